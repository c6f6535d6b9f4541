#include "DeviceKit/DeviceError.h"

#include <system_error>

namespace DeviceKit {
namespace {

struct Describe {
  static std::string text(int error) { return std::generic_category().message(error); }

  std::string operator()(const DeviceError::CannotOpen& error) const {
    return "Could not open " + error.path + ": " + text(error.underlying);
  }
  std::string operator()(const DeviceError::AuthorizationDenied& error) const {
    return "Authorization to read " + error.path + " was denied.";
  }
  std::string operator()(const DeviceError::NotAFileOrDevice& error) const {
    return error.path + " is not a readable file or device.";
  }
  std::string operator()(const DeviceError::ReadFailed& error) const {
    return "Read failed at offset " + std::to_string(error.offset) + ": " + text(error.underlying);
  }
};

}  // namespace

DeviceError::DeviceError(Kind kind)
    : kind_(std::move(kind)), description_(std::visit(Describe{}, kind_)) {}

DeviceError DeviceError::cannotOpen(std::string path, int underlying) {
  return DeviceError(CannotOpen{std::move(path), underlying});
}
DeviceError DeviceError::authorizationDenied(std::string path) {
  return DeviceError(AuthorizationDenied{std::move(path)});
}
DeviceError DeviceError::notAFileOrDevice(std::string path) {
  return DeviceError(NotAFileOrDevice{std::move(path)});
}
DeviceError DeviceError::readFailed(std::uint64_t offset, int underlying) {
  return DeviceError(ReadFailed{offset, underlying});
}

}  // namespace DeviceKit
