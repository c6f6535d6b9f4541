#pragma once

#include "PlatformKit/FileSystem.h"

namespace OffloadKit {

/// Whether the answer of flushing a folder or a volume means that something may be lost. A folder
/// that this user may write to but not open cannot be flushed; that is no fault of the drive.
[[nodiscard]] bool isLoss(int error);

/// Returns when the names in a folder are on the drive. Answers 0, also where that is not for this
/// user to do, or the error number. Any thread.
[[nodiscard]] int flushNames(PlatformKit::Folder& within, const PlatformKit::Path& folder);

/// Whether the drive still takes changes behind a flush that said yes: ext4 whose journal failed in
/// the background says yes to a flush, because there is nothing to flush any more, but makes no
/// file, for good. Makes the file `hidden`, which nothing else may have the name of, and removes
/// it. Answers 0, also where there is no room or right to make one, or the error number. Any
/// thread.
[[nodiscard]] int checkTakesChanges(PlatformKit::Folder& within, const PlatformKit::Path& hidden);

}  // namespace OffloadKit
