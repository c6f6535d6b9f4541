#include "PlatformKit/Linux/MountTable.h"

#include "PlatformKit/Paths.h"

#include <algorithm>
#include <charconv>

namespace PlatformKit {
namespace {

std::vector<std::string_view> fieldsOf(std::string_view line) {
  std::vector<std::string_view> fields;
  while (!line.empty()) {
    const std::size_t end = std::min(line.find(' '), line.size());
    if (end > 0) fields.push_back(line.substr(0, end));
    line.remove_prefix(std::min(end + 1, line.size()));
  }
  return fields;
}

bool isOctal(char c) {
  return c >= '0' && c <= '7';
}

// The kernel writes space, tab, line feed and backslash as a backslash and three octal digits.
std::string unescaped(std::string_view field) {
  std::string text;
  for (std::size_t i = 0; i < field.size(); ++i) {
    if (field[i] == '\\' && i + 3 < field.size() && isOctal(field[i + 1]) &&
        isOctal(field[i + 2]) && isOctal(field[i + 3])) {
      text += static_cast<char>((field[i + 1] - '0') * 64 + (field[i + 2] - '0') * 8 +
                                (field[i + 3] - '0'));
      i += 3;
    } else {
      text += field[i];
    }
  }
  return text;
}

bool hasOption(std::string_view options, std::string_view wanted) {
  while (!options.empty()) {
    const std::size_t end = std::min(options.find(','), options.size());
    if (options.substr(0, end) == wanted) return true;
    options.remove_prefix(std::min(end + 1, options.size()));
  }
  return false;
}

std::optional<Mount> mountOf(std::string_view line) {
  const auto fields = fieldsOf(line);
  // Optional fields stand between the sixth field and a lone dash.
  const auto dash = std::find(fields.begin() + std::min<std::ptrdiff_t>(6, std::ssize(fields)),
                              fields.end(), std::string_view("-"));
  const auto behindDash = std::distance(dash, fields.end());
  if (behindDash < 3) return std::nullopt;
  const auto device = parseDeviceNumber(fields[2]);
  if (!device) return std::nullopt;
  const bool isReadOnly =
      hasOption(fields[5], "ro") || (behindDash > 3 && hasOption(*(dash + 3), "ro"));
  return Mount{*device,
               unescaped(fields[3]),
               Path(unescaped(fields[4])),
               std::string(*(dash + 1)),
               unescaped(*(dash + 2)),
               isReadOnly};
}

}  // namespace

std::optional<DeviceNumber> parseDeviceNumber(std::string_view text) {
  DeviceNumber device;
  const char* end = text.data() + text.size();
  const auto major = std::from_chars(text.data(), end, device.major);
  if (major.ec != std::errc{} || major.ptr == end || *major.ptr != ':') return std::nullopt;
  const auto minor = std::from_chars(major.ptr + 1, end, device.minor);
  if (minor.ec != std::errc{} || minor.ptr != end) return std::nullopt;
  return device;
}

std::vector<Mount> parseMountInfo(std::string_view text) {
  std::vector<Mount> mounts;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    if (auto mount = mountOf(text.substr(0, end))) mounts.push_back(std::move(*mount));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return mounts;
}

const Mount* mountHolding(const std::vector<Mount>& mounts, const Path& path) {
  const Mount* best = nullptr;
  for (const Mount& mount : mounts) {
    if (!isInside(path, mount.point)) continue;
    if (best == nullptr || mount.point.native().size() >= best->point.native().size()) {
      best = &mount;
    }
  }
  return best;
}

}  // namespace PlatformKit
