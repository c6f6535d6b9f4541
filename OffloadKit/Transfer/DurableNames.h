#pragma once

#include "PlatformKit/FileSystem.h"

namespace OffloadKit {

/// Whether the answer of flushing a folder or a volume means that something may be lost. A folder
/// that this user may write to but not open cannot be flushed; that is no fault of the drive.
[[nodiscard]] bool isLoss(int error);

/// Returns when the names in a folder are on the drive. Answers 0, also where that is not for this
/// user to do, or the error number. Any thread.
[[nodiscard]] int flushNames(PlatformKit::Folder& within, const PlatformKit::Path& folder);

}  // namespace OffloadKit
