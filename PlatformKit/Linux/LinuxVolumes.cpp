#include "PlatformKit/Linux/LinuxVolumes.h"

#include "PlatformKit/Linux/BlockVolumes.h"
#include "PlatformKit/Linux/MountTable.h"

#include <algorithm>
#include <array>
#include <string_view>

#include <sys/stat.h>
#include <sys/statvfs.h>

namespace PlatformKit {
namespace {

std::optional<std::string> nonEmpty(std::string text) {
  if (text.empty()) return std::nullopt;
  return text;
}

// Those whose names lead to what a file is instead of holding a part of it, and exFAT, whose driver
// moves that part along; docs/testing.md says how it was tried.
bool moveKeepsContent(std::string_view fileSystem) {
  constexpr std::array<std::string_view, 7> kTried = {"ext2",  "ext3",  "ext4", "xfs",
                                                      "btrfs", "exfat", "tmpfs"};
  return std::find(kTried.begin(), kTried.end(), fileSystem) != kTried.end();
}

}  // namespace

VolumeFacts LinuxVolumes::facts(const Path& existing) {
  VolumeFacts facts;
  struct stat status {};
  if (stat(existing.c_str(), &status) == 0) facts.identifier = VolumeIdentifier{status.st_dev};
  struct statvfs space {};
  if (statvfs(existing.c_str(), &space) == 0) facts.available = space.f_bavail * space.f_frsize;
  std::error_code unresolvable;
  const Path path = std::filesystem::canonical(existing, unresolvable);
  if (unresolvable) return facts;
  const auto mounts = readMounts(roots_.mountInfo);
  if (const Mount* mount = mountHolding(mounts, path)) {
    facts.root = mount->point;
    facts.readsThroughCache = mount->fileSystem == "fuseblk";
    facts.moveKeepsContent = moveKeepsContent(mount->fileSystem);
    facts.device = blockDeviceOf(*mount);
    if (facts.device) facts.name = volumeLabel(roots_.udevData, *facts.device);
    if (!facts.name) facts.name = nonEmpty(mount->point.filename().native());
  }
  return facts;
}

bool LinuxVolumes::isGone(DeviceNumber device) {
  const Path devices = roots_.sys / "dev" / "block";
  std::error_code error;
  // Without the list (no /sys in a container) nothing is known, and nothing must be made of it.
  if (!std::filesystem::is_directory(devices, error)) return false;
  const Path entry = devices / numbersText(device);
  if (!std::filesystem::exists(entry, error)) return !error;
  // An encrypted or logical volume stays behind when its disk is pulled, with nothing below it.
  if (!std::filesystem::exists(entry / "dm", error)) return false;
  for (const auto& below : std::filesystem::directory_iterator(entry / "slaves", error)) {
    if (std::filesystem::exists(below.path(), error)) return false;
  }
  return !error;
}

}  // namespace PlatformKit
