#pragma once

#include "PlatformKit/Disks.h"

namespace PlatformKit {

/// What sysfs, which is at `sys`, tells of the whole disk with that folder in it (without links),
/// by its hardware alone: no names of volumes, and never a system disk. Fails for nothing: what
/// cannot be read is empty or false. Any thread.
DiskFacts sysDiskFacts(const Path& sys, const Path& folder);

}  // namespace PlatformKit
