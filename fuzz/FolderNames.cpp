#include "OffloadKit/Card/CameraName.h"
#include "OffloadKit/Records/FolderPreset.h"
#include "PlatformKit/Linux/LinuxFileSystem.h"
#include "PlatformKit/Testing/TempFolder.h"
#include "TextKit/Unicode.h"
#include "fuzz/Input.h"

#include <filesystem>
#include <string>

using OffloadKit::FolderPreset;

namespace {

void checkComponent(const std::string& name) {
  Fuzz::require(!name.empty(), "no component is empty");
  Fuzz::require(name.front() != '.' && name.back() != '.', "no component climbs or hides");
  Fuzz::require(name.find_first_of("/\\:*?\"<>|") == std::string::npos,
                "every file system takes a component");
  Fuzz::require(TextKit::singleLineText(name) == name, "a component is text of one line");
  Fuzz::require(FolderPreset::clean(name) == name, "what is clean stays as it is");
}

void checkResolved(const std::string& path) {
  Fuzz::require(!path.empty(), "the path is not empty");
  for (std::size_t start = 0; start <= path.size();) {
    const std::size_t end = std::min(path.find('/', start), path.size());
    checkComponent(path.substr(start, end - start));
    start = end + 1;
  }
}

// A card with a camera folder of that name.
void checkCamera(const std::string& folderName) {
  static const PlatformKit::Testing::TempFolder card;
  const auto folder = card.path() / "DCIM" / folderName;
  std::error_code tooLong;
  std::filesystem::create_directories(folder, tooLong);
  PlatformKit::LinuxFileSystem fileSystem;
  checkComponent(OffloadKit::cameraName(fileSystem, card.path()));
  std::filesystem::remove(folder, tooLong);
}

}  // namespace

/// Input: template, card, camera and project, with zero bytes between.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  auto parts = Fuzz::partsOf(Fuzz::textOf(data, size), 4);
  parts.resize(4);
  const FolderPreset::Context context{
      {}, std::string(parts[1]), std::string(parts[2]), std::string(parts[3])};
  checkResolved(FolderPreset{std::string(parts[0])}.resolve(context));
  for (const FolderPreset& preset : FolderPreset::presets()) checkResolved(preset.resolve(context));
  for (const auto part : parts) {
    const std::string clean = FolderPreset::clean(part);
    if (!clean.empty()) checkComponent(clean);
    Fuzz::require(clean.size() <= part.size(), "cleaning makes nothing longer");
  }
  if (!parts[3].empty() && parts[3].find('/') == std::string_view::npos) {
    checkCamera(std::string(parts[3]));
  }
  return 0;
}
