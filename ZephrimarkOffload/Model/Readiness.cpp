#include "ZephrimarkOffload/Model/Readiness.h"

#include "TextKit/Translation.h"

namespace ZephrimarkOffload {
namespace {

using TextKit::filled;
using TextKit::translate;

std::optional<std::string> missingRoom(const Readiness& readiness) {
  const auto image = imageDestination(readiness.destinations);
  for (std::size_t i = 0; i < readiness.destinations.size(); ++i) {
    const Readiness::Room& room = readiness.destinations[i];
    const bool takesImage = readiness.cardImageSize && image == i;
    const std::uint64_t imageSize = takesImage ? *readiness.cardImageSize : 0;
    if (!room.freeSpace) {
      return filled(translate("Setup", "Waiting for %1 to answer…"), {room.volumeName});
    }
    // By differences, since a sum might not fit.
    if (*room.freeSpace >= imageSize && *room.freeSpace - imageSize >= readiness.sourceSize) {
      continue;
    }
    return filled(imageSize > 0
                      ? translate("Setup", "%1 doesn't have room for this card and its card image.")
                      : translate("Setup", "%1 doesn't have room for this card."),
                  {room.volumeName});
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::size_t> imageDestination(const std::vector<Readiness::Room>& destinations) {
  std::optional<std::size_t> best;
  for (std::size_t i = 0; i < destinations.size(); ++i) {
    const auto space = destinations[i].freeSpace.value_or(0);
    if (!best || space > destinations[*best].freeSpace.value_or(0)) best = i;
  }
  return best;
}

std::optional<std::string> blocker(const Readiness& readiness) {
  if (!readiness.hasSource) return translate("Setup", "Choose a card to offload.");
  if (readiness.destinations.empty()) {
    return translate("Setup", "Add at least one drive to copy to.");
  }
  if (readiness.sourceFileCount == 0 && readiness.sourceSize == 0) {
    return translate("Setup", "Reading the card…");
  }
  return missingRoom(readiness);
}

}  // namespace ZephrimarkOffload
