#include "ZephrimarkOffload/Model/SetupTexts.h"

#include "OffloadKit/Records/FolderPreset.h"
#include "TextKit/ByteCount.h"
#include "TextKit/Translation.h"
#include "TextKit/Unicode.h"
#include "ZephrimarkOffload/Model/PlatformWords.h"

#include <algorithm>
#include <string_view>

namespace ZephrimarkOffload::SetupTexts {
namespace {

using PlatformKit::Path;
using TextKit::filled;
using TextKit::shownByteCount;
using TextKit::singleLineText;
using TextKit::translate;

// The rest of `path` below `folder`, with its leading slash; none when it lies elsewhere.
std::optional<std::string_view> below(const Path& path, const Path& folder) {
  std::string_view rest = path.native();
  std::string_view prefix = folder.native();
  if (prefix.ends_with('/')) prefix.remove_suffix(1);
  if (!rest.starts_with(prefix)) return std::nullopt;
  rest.remove_prefix(prefix.size());
  if (!rest.empty() && rest.front() != '/') return std::nullopt;
  return rest;
}

std::string withShortHome(const Path& path, const Path& home) {
  const auto rest = home.has_relative_path() ? below(path, home) : std::nullopt;
  return singleLineText(rest ? "~" + std::string(*rest) : path.native());
}

}  // namespace

std::string used(std::int64_t capacity, std::int64_t available) {
  if (capacity <= 0) return {};
  const auto bytes = static_cast<std::uint64_t>(std::max<std::int64_t>(capacity - available, 0));
  return filled(translate("Setup", "%1 used of %2"),
                {shownByteCount(bytes), shownByteCount(static_cast<std::uint64_t>(capacity))});
}

std::string sourceDetail(const SourceFacts& facts, const Path& source, const Path& home) {
  if (!facts.isVolumeRoot) return withShortHome(source, home);
  if (!facts.space) return {};
  return used(static_cast<std::int64_t>(facts.space->capacity),
              static_cast<std::int64_t>(facts.space->available));
}

std::string sourceSummary(const SourceCount& count, const std::string& camera) {
  if (count.files == 0) return translate("Setup", "Reading the card…");
  std::string text = filled(translate("Setup", "%1 files · %2", "%1 files · %2", count.files),
                            {std::to_string(count.files), shownByteCount(count.bytes)});
  if (camera != "Camera") text += " · " + singleLineText(camera);
  return text;
}

std::string destinationName(const DestinationFacts& facts) {
  return facts.isInternal ? translate("Platform", kWords.thisComputer)
                          : singleLineText(facts.volumeName);
}

std::string placeOnDrive(const DestinationFacts& facts, const Path& destination, const Path& home) {
  if (facts.isInternal) return withShortHome(destination, home);
  std::string_view place = below(destination, facts.volumeRoot).value_or(destination.native());
  while (place.starts_with('/')) place.remove_prefix(1);
  while (place.ends_with('/')) place.remove_suffix(1);
  return place.empty() ? translate("Setup", "Top level of the drive") : singleLineText(place);
}

std::string freeText(std::uint64_t bytes) {
  return filled(translate("Setup", "%1 free"), {shownByteCount(bytes)});
}

std::string onDrives(std::size_t destinations) {
  return translate("Setup", "on each drive", "on the drive", destinations);
}

std::string cardImageDetail(std::uint64_t size, const std::string& destinationName) {
  if (destinationName.empty()) return shownByteCount(size);
  return filled(translate("Setup", "%1 on %2"), {shownByteCount(size), destinationName});
}

std::string cardImageCaption(bool isPossible) {
  if (!isPossible) return translate("Setup", "Available when offloading a whole card.");
  return translate("Platform", kWords.imagesCard);
}

std::string startSummary(std::uint64_t size, std::size_t destinations) {
  return filled(translate("Setup", "%1 to %2 drives", "%1 to %2 drive", destinations),
                {shownByteCount(size), std::to_string(destinations)});
}

std::string tokensHelp() {
  std::string text;
  for (const auto& token : OffloadKit::FolderPreset::tokens()) {
    text += (text.empty() ? "" : "\n") + std::string(token.token) + "  " +
            translate("Setup", token.meaning);
  }
  return text;
}

}  // namespace ZephrimarkOffload::SetupTexts
