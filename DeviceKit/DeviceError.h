#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <variant>

namespace DeviceKit {

/// Why a device or file could not be opened or read: one of four kinds, each with what it knows.
/// Its text is a full sentence for people, in English, made once. A value; two are equal when their
/// kinds and what those know are.
class DeviceError final : public std::exception {
 public:
  /// The system would not open it, or not tell about it.
  struct CannotOpen {
    std::string path;
    int underlying;  ///< the system's error number
    friend bool operator==(const CannotOpen&, const CannotOpen&) = default;
  };
  /// The system wants the user's authorization, and the user, or everybody there was to ask, said
  /// no.
  struct AuthorizationDenied {
    std::string path;
    friend bool operator==(const AuthorizationDenied&, const AuthorizationDenied&) = default;
  };
  /// It is a folder, a pipe or another thing that has no size to read.
  struct NotAFileOrDevice {
    std::string path;
    friend bool operator==(const NotAFileOrDevice&, const NotAFileOrDevice&) = default;
  };
  /// Bytes in the middle of it could not be read.
  struct ReadFailed {
    std::uint64_t offset;  ///< of the first byte that could not be read
    int underlying;        ///< the system's error number
    friend bool operator==(const ReadFailed&, const ReadFailed&) = default;
  };
  using Kind = std::variant<CannotOpen, AuthorizationDenied, NotAFileOrDevice, ReadFailed>;

  static DeviceError cannotOpen(std::string path, int underlying);
  static DeviceError authorizationDenied(std::string path);
  static DeviceError notAFileOrDevice(std::string path);
  static DeviceError readFailed(std::uint64_t offset, int underlying);

  [[nodiscard]] const Kind& kind() const { return kind_; }
  /// The sentence. It names the path or the offset, and the system's own words if there are any.
  [[nodiscard]] const std::string& errorDescription() const { return description_; }
  [[nodiscard]] const char* what() const noexcept override { return description_.c_str(); }

  friend bool operator==(const DeviceError& a, const DeviceError& b) { return a.kind_ == b.kind_; }

 private:
  explicit DeviceError(Kind kind);

  Kind kind_;
  std::string description_;
};

}  // namespace DeviceKit
