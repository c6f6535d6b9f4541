#include "OffloadKit/Card/CameraName.h"

#include "TextKit/Unicode.h"

#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace OffloadKit {
namespace {

using Brand = std::pair<std::string_view, std::string_view>;

// What the names of camera folders contain, in upper case; the first rule that fits decides.
constexpr std::array<Brand, 14> kFolderBrands = {{{"CANON", "Canon"},
                                                  {"EOS", "Canon"},
                                                  {"NIKON", "Nikon"},
                                                  {"MSDCF", "Sony"},
                                                  {"GOPRO", "GoPro"},
                                                  {"FUJI", "Fujifilm"},
                                                  {"OLYMP", "OM System"},
                                                  {"PANA", "Panasonic"},
                                                  {"LEICA", "Leica"},
                                                  {"RICOH", "Ricoh"},
                                                  {"HASBL", "Hasselblad"},
                                                  {"PENTX", "Pentax"},
                                                  {"MEDIA", "DJI"},
                                                  {"DJI", "DJI"}}};

// Paths below the card that tell a brand where the camera folders did not.
constexpr std::array<Brand, 4> kPathBrands = {{{"PRIVATE/M4ROOT", "Sony"},
                                               {"XDROOT", "Sony"},
                                               {"PRIVATE/AVCHD", "AVCHD"},
                                               {"CONTENTS/CLIPS001", "Canon"}}};

std::optional<std::string_view> brandOf(const std::string& folderName) {
  const std::string upper = TextKit::upperCase(folderName);
  for (const auto& [fragment, brand] : kFolderBrands) {
    if (upper.find(fragment) != std::string::npos) return brand;
  }
  return std::nullopt;
}

}  // namespace

std::string cameraName(PlatformKit::FileSystem& fileSystem, const PlatformKit::Path& card) {
  const auto folders = fileSystem.list(card / "DCIM");
  if (folders.ok()) {
    for (const auto& folder : folders.value().entries) {
      if (const auto brand = brandOf(folder.name)) return std::string(*brand);
    }
  }
  for (const auto& [path, brand] : kPathBrands) {
    if (fileSystem.status(card / path).ok()) return std::string(brand);
  }
  return "Camera";
}

}  // namespace OffloadKit
