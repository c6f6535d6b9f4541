#pragma once

#include "PlatformKit/Posix/SystemText.h"

#include <string>

namespace OffloadKit {

using PlatformKit::systemText;

/// A short sentence for people about a drive, from the system's error number: "No permission to
/// write here", "The drive reported a write error", "The drive was disconnected", "The drive is
/// full", or the system's own text. A number the system does not know counts as EIO. In English, as
/// results keep it. Any thread.
std::string describe(int error);

}  // namespace OffloadKit
