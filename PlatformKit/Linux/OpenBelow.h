#pragma once

#include "PlatformKit/FileSystem.h"
#include "PlatformKit/Posix/UniqueFd.h"

namespace PlatformKit {

/// Who makes sure that a path leads nowhere else.
enum class Resolving {
  byKernel,     ///< openat2 (Linux 5.6)
  byComponent,  ///< one openat for each component, where the kernel or a sandbox refuses openat2
};

/// Opens what lies at the relative `path` below the folder `root`. As `open(2)` with these `flags`
/// (O_CLOEXEC is added) and, for a new file, this `mode`; but no link is followed (ELOOP), nothing
/// leads out of the folder (EXDEV), nor, where mounts are refused, into another volume (EXDEV).
/// Answers the descriptor or the error number. Any thread.
[[nodiscard]] Result<UniqueFd> openBelow(int root, const Path& path, int flags, unsigned mode,
                                         Mounts mounts, Resolving resolving);

/// The same, by the kernel where that is to be had.
[[nodiscard]] Result<UniqueFd> openBelow(int root, const Path& path, int flags, unsigned mode,
                                         Mounts mounts);

}  // namespace PlatformKit
