#include "OffloadKit/FolderPreset.h"

#include "PlatformKit/Translation.h"
#include "PlatformKit/Unicode.h"

#include <optional>
#include <utility>
#include <vector>

namespace OffloadKit {
namespace {

using PlatformKit::translatable;

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

bool isUnsafe(char32_t character) {
  return std::u32string_view(U"/\\:*?\"<>|").find(character) != std::u32string_view::npos ||
         PlatformKit::isControlCharacter(character);
}

bool isTrimmed(char32_t character) {
  return character == U'.' || PlatformKit::isSpaceCharacter(character);
}

std::string trimmed(std::string_view text) {
  std::size_t start = text.size();
  std::size_t end = 0;
  PlatformKit::forEachCharacter(text, [&](char32_t character, bool, std::string_view bytes) {
    if (isTrimmed(character)) return;
    const auto at = static_cast<std::size_t>(bytes.data() - text.data());
    start = std::min(start, at);
    end = at + bytes.size();
  });
  return std::string(text.substr(start, start < end ? end - start : 0));
}

std::optional<std::string_view> brandOf(const std::string& folderName) {
  const std::string upper = PlatformKit::upperCase(folderName);
  for (const auto& [fragment, brand] : kFolderBrands) {
    if (upper.find(fragment) != std::string::npos) return brand;
  }
  return std::nullopt;
}

std::string substituted(std::string_view text,
                        const std::array<std::pair<std::string_view, std::string>, 5>& values) {
  std::string result;
  while (!text.empty()) {
    std::string_view taken = text.substr(0, 1);
    std::string_view put = taken;
    for (const auto& [token, value] : values) {
      if (text.starts_with(token)) {
        taken = token;
        put = value;
      }
    }
    result += put;
    text.remove_prefix(taken.size());
  }
  return result;
}

}  // namespace

const std::array<FolderPreset, 4>& FolderPreset::presets() {
  static const std::array<FolderPreset, 4> list = {{{"{date}/{card}"},
                                                    {"{date}/{camera}/{card}"},
                                                    {"{project}/{date}/{card}"},
                                                    {"{date}_{project}/{camera}"}}};
  return list;
}

const std::array<FolderPreset::Token, 5>& FolderPreset::tokens() {
  static constexpr std::array<Token, 5> list = {
      {{"{date}", translatable("Setup", "Date of the offload, 2026-10-07")},
       {"{time}", translatable("Setup", "Time of the offload, 1432")},
       {"{card}", translatable("Setup", "The card's name, EOS_DIGITAL")},
       {"{camera}", translatable("Setup", "Camera brand, from the card's folders")},
       {"{project}", translatable("Setup", "The project name you type")}}};
  return list;
}

std::string FolderPreset::resolve(const Context& context) const {
  const std::string date = PlatformKit::localDateText(context.date, "%Y-%m-%d");
  const std::string project = context.project.empty() ? "Untitled" : context.project;
  const std::string text =
      substituted(templateText, {{{"{date}", clean(date)},
                                  {"{time}", PlatformKit::localDateText(context.date, "%H%M")},
                                  {"{card}", clean(context.card)},
                                  {"{camera}", clean(context.camera)},
                                  {"{project}", clean(project)}}});
  std::string path;
  for (std::size_t start = 0; start <= text.size();) {
    const std::size_t end = std::min(text.find('/', start), text.size());
    // Cleaning takes dots from both ends, so "." and ".." come out empty.
    const std::string piece = clean(std::string_view(text).substr(start, end - start));
    if (!piece.empty()) path += (path.empty() ? "" : "/") + piece;
    start = end + 1;
  }
  return path.empty() ? clean(date) : path;
}

std::string FolderPreset::clean(std::string_view text) {
  std::string safe;
  PlatformKit::forEachCharacter(text, [&](char32_t character, bool valid, std::string_view bytes) {
    safe += valid && !isUnsafe(character) ? bytes : std::string_view("-");
  });
  return trimmed(safe);
}

std::string FolderPreset::cameraName(PlatformKit::FileSystem& fileSystem,
                                     const PlatformKit::Path& card) {
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
