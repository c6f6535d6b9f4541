#include "PlatformKit/Linux/BlockVolumes.h"

#include <charconv>
#include <fstream>
#include <sstream>
#include <string_view>

#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace PlatformKit {
namespace {

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

// A source can be anything, as a folder on another volume, and to ask that one could take forever.
bool isNameOfADevice(const std::string& source) {
  return source.starts_with("/dev/") && Path(source).lexically_normal() == source;
}

}  // namespace

std::string numbersText(DeviceNumber device) {
  return std::to_string(device.major) + ":" + std::to_string(device.minor);
}

std::optional<DeviceNumber> blockDeviceOf(const Mount& mount) {
  if (mount.device.major != 0) return mount.device;
  // Some file systems (btrfs) list a number of their own; the device is then behind the source's
  // name.
  struct stat status {};
  if (isNameOfADevice(mount.source) && stat(mount.source.c_str(), &status) == 0 &&
      S_ISBLK(status.st_mode)) {
    return DeviceNumber{major(status.st_rdev), minor(status.st_rdev)};
  }
  return std::nullopt;
}

std::optional<std::string> volumeLabel(const Path& udevData, DeviceNumber device) {
  constexpr std::string_view kKey = "E:ID_FS_LABEL_ENC=";
  std::ifstream stream(udevData / ("b" + numbersText(device)));
  for (std::string line; std::getline(stream, line);) {
    if (!line.starts_with(kKey)) continue;
    std::string label = withoutUdevEscapes(std::string_view(line).substr(kKey.size()));
    if (label.empty()) return std::nullopt;
    return label;
  }
  return std::nullopt;
}

std::vector<Mount> readMounts(const Path& mountInfo) {
  std::ifstream stream(mountInfo, std::ios::binary);
  // Unlike iterators over the stream, this does not throw when a read fails.
  std::ostringstream content;
  content << stream.rdbuf();
  return parseMountInfo(content.str());
}

}  // namespace PlatformKit
