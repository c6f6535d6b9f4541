#pragma once

#include "PlatformKit/FileSystem.h"

#include <cstdint>
#include <functional>
#include <string_view>

namespace OffloadKit {

enum class Existing { keep, replace };

/// Writes a whole small file in one step: as `temporary` in the same folder, flushed, then moved to
/// its name and flushed there with its folder. A reader sees the old file or the new one, never a
/// part. A leftover of the temporary name is removed. With Existing::keep a file of the final name
/// stays and the answer is EEXIST. Answers 0 when the file is on the drive under its name, else the
/// error number; the file may then have its name, and nothing is left under the temporary one. Any
/// thread.
[[nodiscard]] int writeWholeFile(PlatformKit::Folder& within, const PlatformKit::Path& path,
                                 const PlatformKit::Path& temporary, std::string_view content,
                                 Existing existing);

/// Reads a regular file in pieces, up to `limit` bytes of it. `take` gets each piece and whether it
/// is the last, and answers whether to go on. Answers 0, also when `take` or the limit ended it, or
/// the error number; ENOENT for what is not a regular file. Any thread.
[[nodiscard]] int readWholeFile(PlatformKit::Folder& within, const PlatformKit::Path& path,
                                std::uint64_t limit,
                                const std::function<bool(std::string_view, bool)>& take);

}  // namespace OffloadKit
