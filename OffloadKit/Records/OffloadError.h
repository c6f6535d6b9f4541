#pragma once

#include "OffloadKit/Records/Reason.h"

#include <cstdint>
#include <exception>
#include <string>

namespace OffloadKit {

/// Why a run could not start or was stopped.
class OffloadError final : public std::exception {
 public:
  /// `reason`: what could not be read, and why.
  static OffloadError sourceUnreadable(Reason reason);
  /// The next four take the destination's display name.
  static OffloadError destinationOnSource(std::string destination);
  static OffloadError destinationUnavailable(std::string destination);
  /// Another offload, or another destination of this one, is the same folder.
  static OffloadError destinationInUse(std::string destination);
  /// `needed`, `available`: bytes.
  static OffloadError notEnoughSpace(std::string destination, std::uint64_t needed,
                                     std::uint64_t available);
  static OffloadError cardImageUnavailable(Reason reason);
  static OffloadError noFiles();
  static OffloadError cancelled();

  [[nodiscard]] const Reason& reason() const { return reason_; }
  [[nodiscard]] bool isCancelled() const { return reason_.kind() == Reason::Kind::stopped; }
  /// The reason in English.
  [[nodiscard]] const char* what() const noexcept override { return english_.c_str(); }

  friend bool operator==(const OffloadError& a, const OffloadError& b) {
    return a.reason_ == b.reason_;
  }

 private:
  explicit OffloadError(Reason reason);

  Reason reason_;
  std::string english_;
};

}  // namespace OffloadKit
