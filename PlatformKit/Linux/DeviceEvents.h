#pragma once

#include <string_view>

namespace PlatformKit {

/// Whether a message that the kernel or udev sent to everybody is about a block device: one came,
/// went, or has another medium or label. `message` may hold any bytes. Any thread.
bool isBlockDeviceEvent(std::string_view message);

}  // namespace PlatformKit
