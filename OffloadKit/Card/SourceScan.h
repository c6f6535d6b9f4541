#pragma once

#include "OffloadKit/Records/SourceFile.h"
#include "PlatformKit/System.h"

#include <memory>
#include <string_view>
#include <vector>

namespace OffloadKit {

/// What a source holds.
struct SourceScan {
  std::vector<SourceFile> files;           ///< in the order of a file browser
  std::vector<UnreadableItem> unreadable;  ///< what could not be read, in the order it was met
};

/// Holds the folder that a card or a source is; what is mounted below it belongs to it. Throws
/// OffloadError::sourceUnreadable. Any thread; a dead card can block for long.
[[nodiscard]] std::unique_ptr<PlatformKit::Folder> openSource(PlatformKit::FileSystem& fileSystem,
                                                              const PlatformKit::Path& source);

/// Lists the regular files below the folder `card`, hidden ones included. Links are not followed;
/// what is a card's own housekeeping (see `isIgnoredName`) is left out with everything below it.
/// Items that cannot be read do not stop the scan; they are named in `unreadable`. Throws
/// OffloadError::sourceUnreadable when the folder itself cannot be listed. Any thread.
[[nodiscard]] SourceScan scan(PlatformKit::Folder& card);
/// The same of a folder that nobody holds.
[[nodiscard]] SourceScan scan(PlatformKit::System system, const PlatformKit::Path& source);

/// The relative paths of the files, which they refer to.
std::vector<std::string_view> relativePathsOf(const std::vector<SourceFile>& files);

/// Whether an item of this name is skipped: what operating systems keep for themselves on a card,
/// the folder of hash lists, and names that begin with "._". Exact, case-sensitive.
bool isIgnoredName(std::string_view name);

}  // namespace OffloadKit
