#include "DeviceKit/DeviceError.h"

#include "PlatformKit/Posix/SystemText.h"
#include "TextKit/Translation.h"

namespace DeviceKit {
namespace {

using PlatformKit::systemText;
using TextKit::filled;

struct Describe {
  std::string operator()(const DeviceError::CannotOpen& error) const {
    return filled("Could not open %1: %2", {error.path, systemText(error.underlying)});
  }
  std::string operator()(const DeviceError::AuthorizationDenied& error) const {
    return filled("Authorization to read %1 was denied.", {error.path});
  }
  std::string operator()(const DeviceError::NotAFileOrDevice& error) const {
    return filled("%1 is not a readable file or device.", {error.path});
  }
  std::string operator()(const DeviceError::ReadFailed& error) const {
    return filled("Read failed at offset %1: %2",
                  {std::to_string(error.offset), systemText(error.underlying)});
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
