#include "PlatformKit/Linux/BlockVolumes.h"
#include "PlatformKit/Testing/TempFolder.h"
#include "fuzz/Input.h"

#include <cctype>
#include <string>

using PlatformKit::volumeLabel;
using PlatformKit::Testing::writeFile;

namespace {

std::string escaped(std::string_view label) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string result;
  for (const char c : label) {
    const auto byte = static_cast<unsigned char>(c);
    if (std::isalnum(byte) != 0) {
      result += c;
    } else {
      result += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
    }
  }
  return result;
}

}  // namespace

/// Input: udev's facts of a device, and as a whole also a label.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const PlatformKit::Testing::TempFolder folder;
  constexpr PlatformKit::DeviceNumber kDevice{8, 1};
  const auto text = Fuzz::textOf(data, size);
  writeFile(folder.path() / "b8:1", text);
  const auto label = volumeLabel(folder.path(), kDevice);
  Fuzz::require(!label || !label->empty(), "a label is never empty");
  Fuzz::require(!label || label->size() < size, "a label is shorter than its file");

  writeFile(folder.path() / "b8:1", "E:ID_FS_TYPE=vfat\nE:ID_FS_LABEL_ENC=" + escaped(text) + "\n");
  Fuzz::require(volumeLabel(folder.path(), kDevice).value_or("") == text,
                "a label written as udev does reads the same");
  return 0;
}
