#include "OffloadKit/Card/SourceScan.h"

#include "OffloadKit/Records/OffloadError.h"
#include "TextKit/Collation.h"

#include <algorithm>
#include <array>
#include <cerrno>

namespace OffloadKit {
namespace {

using PlatformKit::FolderEntry;
using PlatformKit::ItemKind;

constexpr std::array<std::string_view, 8> kIgnoredNames = {".DS_Store",
                                                           ".Spotlight-V100",
                                                           ".Trashes",
                                                           ".fseventsd",
                                                           ".TemporaryItems",
                                                           ".DocumentRevisions-V100",
                                                           "System Volume Information",
                                                           "ascmhl"};

// A damaged card, or a driver that believes it, can tell names that would lead out of their folder,
// here and on the drives.
bool isPlainName(std::string_view name) {
  return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos;
}

// Walks depth-first with a stack of its own: a card decides how deep its folders go.
class Walk {
 public:
  explicit Walk(PlatformKit::Folder& card) : card_(card) {}

  SourceScan run() {
    if (!enter("")) {
      throw OffloadError::sourceUnreadable(Reason(Reason::Kind::filesNotListed));
    }
    while (!open_.empty()) {
      Folder& folder = open_.back();
      if (folder.next == folder.entries.size()) {
        open_.pop_back();
        continue;
      }
      const FolderEntry entry = std::move(folder.entries[folder.next++]);
      visit(entry, folder.prefix + entry.name);
    }
    return std::move(result_);
  }

 private:
  struct Folder {
    std::string prefix;  // relative path of the folder with a "/" at its end; empty at the top
    std::vector<FolderEntry> entries;
    std::size_t next = 0;
  };

  void visit(const FolderEntry& entry, std::string relativePath) {
    if (isIgnoredName(entry.name)) return;
    if (!isPlainName(entry.name)) {
      unreadable(std::move(relativePath), EUCLEAN);
      return;
    }
    if (!entry.status.ok()) {
      unreadable(std::move(relativePath), entry.status.error());
      return;
    }
    const auto& status = entry.status.value();
    if (status.kind == ItemKind::folder) {
      static_cast<void>(enter(relativePath));
    } else if (status.kind == ItemKind::regularFile) {
      result_.files.push_back(
          {std::move(relativePath), status.size, status.modified, status.created});
    }
  }

  // False when nothing of the folder could be listed.
  bool enter(const std::string& relativePath) {
    auto listed = card_.list(relativePath);
    if (!listed.ok()) {
      unreadable(relativePath, listed.error());
      return false;
    }
    if (listed.value().error != 0) unreadable(relativePath, listed.value().error);
    open_.push_back(
        {relativePath.empty() ? "" : relativePath + "/", std::move(listed.value().entries)});
    return true;
  }

  void unreadable(std::string relativePath, int error) {
    result_.unreadable.push_back({std::move(relativePath), Reason::ofSystem(error)});
  }

  PlatformKit::Folder& card_;
  std::vector<Folder> open_;
  SourceScan result_;
};

std::vector<SourceFile> inFileBrowserOrder(std::vector<SourceFile> files) {
  const auto order = TextKit::fileBrowserOrder(relativePathsOf(files));
  std::vector<SourceFile> sorted;
  sorted.reserve(files.size());
  for (const std::size_t position : order) sorted.push_back(std::move(files[position]));
  return sorted;
}

}  // namespace

std::vector<std::string_view> relativePathsOf(const std::vector<SourceFile>& files) {
  std::vector<std::string_view> paths;
  paths.reserve(files.size());
  for (const SourceFile& file : files) paths.emplace_back(file.relativePath);
  return paths;
}

bool isIgnoredName(std::string_view name) {
  return name.starts_with("._") ||
         std::find(kIgnoredNames.begin(), kIgnoredNames.end(), name) != kIgnoredNames.end();
}

std::unique_ptr<PlatformKit::Folder> openSource(PlatformKit::FileSystem& fileSystem,
                                                const PlatformKit::Path& source) {
  auto held = fileSystem.openFolder(source, PlatformKit::Mounts::crossed);
  if (!held.ok()) throw OffloadError::sourceUnreadable(Reason(Reason::Kind::filesNotListed));
  return std::move(held.value());
}

SourceScan scan(PlatformKit::System system, const PlatformKit::Path& source) {
  return scan(*openSource(system.fileSystem, source));
}

SourceScan scan(PlatformKit::Folder& card) {
  SourceScan result = Walk(card).run();
  result.files = inFileBrowserOrder(std::move(result.files));
  return result;
}

}  // namespace OffloadKit
