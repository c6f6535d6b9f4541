#pragma once

#include "DeviceKit/ByteSource.h"
#include "DeviceKit/RawDeviceAccess.h"

#include <memory>
#include <string>

namespace DeviceKit::SourceOpener {

/// The source that fits what is at `path`: a device (opened as `access` does, which may ask the
/// user for a password and block meanwhile) or a regular file, through links too. It owns what it
/// opened and needs neither argument any more. Throws DeviceError: cannotOpen, authorizationDenied,
/// notAFileOrDevice. Any thread.
std::unique_ptr<ByteSource> open(PlatformKit::RawDevices& devices, const RawDeviceAccess& access,
                                 const std::string& path);

}  // namespace DeviceKit::SourceOpener
