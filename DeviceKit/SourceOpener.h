#pragma once

#include "DeviceKit/ByteSource.h"
#include "DeviceKit/RawDeviceAccess.h"

#include <memory>
#include <string>

namespace DeviceKit::SourceOpener {

/// The source that fits what is at `path`: a device (opened as `access` does) or a regular file,
/// through links too. Throws DeviceError: cannotOpen, authorizationDenied, notAFileOrDevice.
std::unique_ptr<ByteSource> open(PlatformKit::RawDevices& devices, const RawDeviceAccess& access,
                                 const std::string& path);

}  // namespace DeviceKit::SourceOpener
