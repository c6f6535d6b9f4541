#pragma once

#include "DeviceKit/Reason.h"

#include <cstdint>
#include <exception>
#include <string>

namespace DeviceKit {

/// Why a device or file could not be opened or read.
class DeviceError final : public std::exception {
 public:
  /// `error`: the system's error number.
  static DeviceError cannotOpen(std::string path, int error);
  static DeviceError authorizationDenied(std::string path);
  static DeviceError notAFileOrDevice(std::string path);
  /// `offset`: of the first byte that could not be read.
  static DeviceError readFailed(std::uint64_t offset, int error);

  [[nodiscard]] const Reason& reason() const { return reason_; }
  /// The reason in English.
  [[nodiscard]] const char* what() const noexcept override { return english_.c_str(); }

  friend bool operator==(const DeviceError& a, const DeviceError& b) {
    return a.reason_ == b.reason_;
  }

 private:
  explicit DeviceError(Reason reason);

  Reason reason_;
  std::string english_;
};

}  // namespace DeviceKit
