#include "PlatformKit/Linux/LinuxVolumes.h"

#include "PlatformKit/Linux/BlockVolumes.h"
#include "PlatformKit/Linux/MountTable.h"

#include <sys/stat.h>
#include <sys/statvfs.h>

namespace PlatformKit {
namespace {

std::optional<std::string> nonEmpty(std::string text) {
  if (text.empty()) return std::nullopt;
  return text;
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
  return std::filesystem::status(devices / numbersText(device), error).type() ==
         std::filesystem::file_type::not_found;
}

}  // namespace PlatformKit
