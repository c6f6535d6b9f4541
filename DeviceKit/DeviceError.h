#pragma once

#include "DeviceKit/Reason.h"

#include <cstdint>
#include <exception>
#include <string>

namespace DeviceKit {

/// Why a device or file could not be opened or read. A value; two are equal when their sentences
/// are.
class DeviceError final : public std::exception {
 public:
  /// The system would not open it, or not tell about it. `error`: the system's error number.
  static DeviceError cannotOpen(std::string path, int error);
  /// The system wants the user's authorization, and the user, or everybody there was to ask, said
  /// no.
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
