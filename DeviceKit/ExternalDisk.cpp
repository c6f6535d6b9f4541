#include "DeviceKit/ExternalDisk.h"

#include "TextKit/ByteCount.h"
#include "TextKit/Words.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace DeviceKit {

std::string ExternalDisk::displayName() const {
  if (volumeNames.empty()) return mediaName.empty() ? deviceIdentifier : mediaName;
  std::string names = volumeNames.front();
  for (std::size_t i = 1; i < volumeNames.size(); ++i) names += ", " + volumeNames[i];
  return names;
}

std::string ExternalDisk::sizeDescription() const {
  return TextKit::shownByteCount(sizeBytes);
}

bool ExternalDisk::isMemoryCard() const {
  constexpr std::array<std::string_view, 13> kWordsOfCards = {
      "sd", "sdhc",  "sdxc",      "sduc", "microsd", "card", "reader",
      "cf", "cfast", "cfexpress", "xqd",  "mmc",     "sxs"};
  const auto words = TextKit::lowerCaseWords(mediaName);
  return std::find_first_of(words.begin(), words.end(), kWordsOfCards.begin(),
                            kWordsOfCards.end()) != words.end();
}

}  // namespace DeviceKit
