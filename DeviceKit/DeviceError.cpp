#include "DeviceKit/DeviceError.h"

#include <utility>

namespace DeviceKit {

using Kind = Reason::Kind;

DeviceError::DeviceError(Reason reason) : reason_(std::move(reason)), english_(reason_.english()) {}

DeviceError DeviceError::cannotOpen(std::string path, int error) {
  return DeviceError({Kind::cannotOpen, {std::move(path)}, Reason::ofSystem(error)});
}
DeviceError DeviceError::authorizationDenied(std::string path) {
  return DeviceError(Reason(Kind::mayNotRead, {std::move(path)}));
}
DeviceError DeviceError::notAFileOrDevice(std::string path) {
  return DeviceError(Reason(Kind::notReadable, {std::move(path)}));
}
DeviceError DeviceError::readFailed(std::uint64_t offset, int error) {
  return DeviceError({Kind::readFailed, {std::to_string(offset)}, Reason::ofSystem(error)});
}

}  // namespace DeviceKit
