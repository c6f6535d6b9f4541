#include "PlatformKit/Linux/LinuxDisks.h"
#include "PlatformKit/Linux/LinuxMountedVolumes.h"
#include "PlatformKit/Linux/LinuxVolumes.h"
#include "PlatformKit/Testing/TempFolder.h"
#include "fuzz/Input.h"

#include <algorithm>
#include <optional>
#include <string>

using namespace PlatformKit;

namespace {

constexpr std::size_t kMostLines = 40;
constexpr int kDeepest = 12;

// Below the tree; none when a component could climb out of it or cannot be a name.
std::optional<Path> placeIn(const Path& tree, std::string_view text) {
  Path place = tree;
  int depth = 0;
  for (const Path& part : Path(text)) {
    if (part.empty() || part == "/" || part == "." || part == "..") return std::nullopt;
    if (++depth > kDeepest || part.native().size() > 100) return std::nullopt;
    place /= part;
  }
  return depth > 0 ? std::optional(place) : std::nullopt;
}

// "sys/a/b=text" is a file, "sys/a/b>sys/c" a link; anything else, or what cannot be, is nothing.
void make(const Path& tree, std::string_view line) {
  const std::size_t end = line.find_first_of("=>");
  if (end == std::string_view::npos) return;
  const auto place = placeIn(tree, line.substr(0, end));
  const std::string_view rest = line.substr(end + 1);
  if (!place) return;
  std::error_code impossible;
  std::filesystem::create_directories(place->parent_path(), impossible);
  if (impossible) return;
  if (line[end] == '=') {
    const auto before = std::filesystem::symlink_status(*place, impossible);
    if (!exists(before) || is_regular_file(before)) {
      Testing::writeFile(*place, std::string(rest) + "\n");
    }
  } else if (const auto target = placeIn(tree, rest)) {
    std::filesystem::create_symlink(target->lexically_relative(place->parent_path()), *place,
                                    impossible);
  }
}

void checkDisks(const std::vector<DiskFacts>& disks) {
  for (std::size_t i = 0; i < disks.size(); ++i) {
    const DiskFacts& disk = disks[i];
    Fuzz::require(i == 0 || disks[i - 1].identifier <= disk.identifier, "disks are in order");
    Fuzz::require(disk.sizeBytes % 512 == 0 && disk.sizeBytes > 0, "a disk has a size");
    Fuzz::require(!disk.isSystemDisk || disk.isInternal, "the system's disk stays where it is");
    Fuzz::require(disk.isEjectable == (disk.isRemovableMedia || disk.isHotPluggable),
                  "what can be taken out can be ejected");
    for (const std::string& name : disk.volumeNames) {
      Fuzz::require(!name.empty(), "names of volumes are not empty");
    }
  }
}

void checkVolumes(const std::vector<MountedVolume>& volumes) {
  for (const MountedVolume& volume : volumes) {
    Fuzz::require(volume.isRootFileSystem == (volume.root == "/"), "the root is at /");
    Fuzz::require(!volume.isNetwork || !volume.device, "a network volume has no device");
    Fuzz::require(!volume.isRemovable || volume.isEjectable, "what can be taken out is ejectable");
    const auto sameDevice = std::count_if(
        volumes.begin(), volumes.end(),
        [&](const MountedVolume& other) { return volume.device && other.device == volume.device; });
    Fuzz::require(sameDevice <= 1, "each device is listed once");
  }
}

}  // namespace

/// Input: lines that make files and links of sysfs ("sys/..."), of udev ("udev/...") and, with "@"
/// in front, lines of the list of mounts.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Testing::TempFolder folder;
  std::string mounts;
  std::string_view text = Fuzz::textOf(data, size);
  for (std::size_t i = 0; i < kMostLines && !text.empty(); ++i) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (line.find('\0') != std::string_view::npos) continue;
    if (line.substr(0, 1) == "@") {
      mounts.append(line.substr(1)).append("\n");
    } else {
      make(folder.path(), line);
    }
  }
  Testing::writeFile(folder.path() / "mountinfo", mounts);
  const Path mountInfo = folder.path() / "mountinfo";
  const Path sys = folder.path() / "sys";
  const Path udev = folder.path() / "udev";

  LinuxVolumes volumes({mountInfo, sys, udev});
  LinuxDisks disks(volumes, {mountInfo, sys, udev});
  checkDisks(disks.list());
  static_cast<void>(disks.holding(folder.path()));
  LinuxMountedVolumes mounted({mountInfo, sys, udev});
  checkVolumes(mounted.list());
  static_cast<void>(mounted.holding(folder.path()));
  return 0;
}
