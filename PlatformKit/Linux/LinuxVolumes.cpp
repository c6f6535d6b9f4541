#include "PlatformKit/Linux/LinuxVolumes.h"

#include "PlatformKit/Linux/MountTable.h"

#include <cerrno>
#include <charconv>
#include <fstream>
#include <iterator>

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>

namespace PlatformKit {
namespace {

std::string contentOf(const Path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::string numbersOf(DeviceNumber device) {
  return std::to_string(device.major) + ":" + std::to_string(device.minor);
}

// udev writes every byte that is not plain in a label as \xHH.
std::string withoutUdevEscapes(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    unsigned value = 0;
    if (text.substr(i, 2) == "\\x" && i + 3 < text.size()) {
      const char* digits = text.data() + i + 2;
      if (std::from_chars(digits, digits + 2, value, 16).ptr == digits + 2) {
        result += static_cast<char>(value);
        i += 3;
        continue;
      }
    }
    result += text[i];
  }
  return result;
}

// Some file systems (btrfs) list a number of their own; the device is then behind the source's
// name.
std::optional<DeviceNumber> blockDeviceOf(const Mount& mount) {
  if (mount.device.major != 0) return mount.device;
  struct stat status {};
  if (mount.source.starts_with('/') && stat(mount.source.c_str(), &status) == 0 &&
      S_ISBLK(status.st_mode)) {
    return DeviceNumber{major(status.st_rdev), minor(status.st_rdev)};
  }
  return std::nullopt;
}

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
  const auto mounts = parseMountInfo(contentOf(roots_.mountInfo));
  if (const Mount* mount = mountHolding(mounts, path)) {
    facts.root = mount->point;
    facts.device = blockDeviceOf(*mount);
    if (facts.device) facts.name = label(*facts.device);
    if (!facts.name) facts.name = nonEmpty(mount->point.filename().native());
  }
  return facts;
}

bool LinuxVolumes::isGone(DeviceNumber device) {
  const Path devices = roots_.sys / "dev" / "block";
  std::error_code error;
  // Without the list (no /sys in a container) nothing is known, and nothing must be made of it.
  if (!std::filesystem::is_directory(devices, error)) return false;
  return std::filesystem::status(devices / numbersOf(device), error).type() ==
         std::filesystem::file_type::not_found;
}

std::optional<std::string> LinuxVolumes::label(DeviceNumber device) const {
  constexpr std::string_view kKey = "E:ID_FS_LABEL_ENC=";
  std::ifstream stream(roots_.udevData / ("b" + numbersOf(device)));
  for (std::string line; std::getline(stream, line);) {
    if (line.starts_with(kKey)) return nonEmpty(withoutUdevEscapes(line.substr(kKey.size())));
  }
  return std::nullopt;
}

}  // namespace PlatformKit
