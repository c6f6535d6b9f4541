#include "DeviceKit/RawDeviceAccess.h"

#include "DeviceKit/DeviceError.h"

#include <cerrno>

namespace DeviceKit {

using Answer = PlatformKit::PrivilegedOpener::Answer;

std::unique_ptr<PlatformKit::RawDevice> RawDeviceAccess::openReadOnly(
    const std::string& path) const {
  auto opened = devices_.open(path);
  if (opened.ok()) return std::move(opened.value());
  if (opened.error() == EACCES || opened.error() == EPERM) return openPrivileged(path);
  throw DeviceError::cannotOpen(path, opened.error());
}

std::unique_ptr<PlatformKit::RawDevice> RawDeviceAccess::openPrivileged(
    const std::string& path) const {
  for (PlatformKit::PrivilegedOpener* opener : privileged_) {
    Answer answer = opener->openReadOnly(path);
    if (answer.kind == Answer::Kind::declined) break;
    if (answer.kind == Answer::Kind::opened && answer.descriptor.valid()) {
      return devices_.adopt(std::move(answer.descriptor));
    }
  }
  throw DeviceError::authorizationDenied(path);
}

}  // namespace DeviceKit
