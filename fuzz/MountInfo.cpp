#include "PlatformKit/Linux/BlockVolumes.h"
#include "PlatformKit/Linux/MountTable.h"
#include "fuzz/Input.h"

#include <algorithm>
#include <string>

using PlatformKit::Mount;

namespace {

// As the kernel does it.
std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    const bool isPlain = c != ' ' && c != '\t' && c != '\n' && c != '\\';
    if (isPlain) {
      result += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      for (const int shift : {6, 3, 0}) {
        if (shift == 6) result += '\\';
        result += static_cast<char>('0' + ((byte >> shift) & 7));
      }
    }
  }
  return result;
}

std::string line(const Mount& mount) {
  return "1 0 " + PlatformKit::numbersText(mount.device) + " " + escaped(mount.root) + " " +
         escaped(mount.point.native()) + (mount.isReadOnly ? " ro" : " rw") + " shared:1 - " +
         mount.fileSystem + " " + escaped(mount.source) + " rw\n";
}

// The kernel names no others.
bool isPlace(const PlatformKit::Path& point) {
  return point.is_absolute() && point == point.lexically_normal() &&
         (point.has_filename() || !point.has_relative_path());
}

bool isSame(const Mount& a, const Mount& b) {
  return a.device == b.device && a.root == b.root && a.point == b.point &&
         a.fileSystem == b.fileSystem && a.source == b.source && a.isReadOnly == b.isReadOnly;
}

}  // namespace

/// Input: the kernel's list of mounts.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(Fuzz::textOf(data, size));
  const auto mounts = PlatformKit::parseMountInfo(text);
  Fuzz::require(
      mounts.size() <= static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1,
      "a line is one mount at most");
  std::string lines;
  for (const Mount& mount : mounts) lines += line(mount);
  const auto again = PlatformKit::parseMountInfo(lines);
  Fuzz::require(std::equal(mounts.begin(), mounts.end(), again.begin(), again.end(), isSame),
                "mounts written as the kernel does read the same");
  for (const Mount& mount : mounts) {
    if (!isPlace(mount.point)) continue;
    const Mount* holding = PlatformKit::mountHolding(mounts, mount.point / "item");
    Fuzz::require(holding != nullptr, "what lies in a mount is held by one");
    Fuzz::require(holding->point.native().size() >= mount.point.native().size(),
                  "it is the deepest one");
  }
  return 0;
}
