#include "ZephrimarkOffload/Model/Readiness.h"

#include "TextKit/Translation.h"

namespace ZephrimarkOffload {
namespace {

using TextKit::filled;
using TextKit::translate;

std::optional<std::string> missingRoom(const OffloadKit::PlanRequest& request,
                                       std::uint64_t sourceSize) {
  const auto receiver = imageDestination(request);
  for (std::size_t i = 0; i < request.destinations.size(); ++i) {
    const auto& [place, freeSpace] = request.destinations[i];
    const std::uint64_t imageSize = request.imageOf && receiver == i ? request.imageOf->size : 0;
    if (!freeSpace) return filled(translate("Setup", "Waiting for %1 to answer…"), {place.name});
    // By differences, since a sum might not fit.
    if (*freeSpace >= imageSize && *freeSpace - imageSize >= sourceSize) continue;
    return filled(imageSize > 0
                      ? translate("Setup", "%1 doesn't have room for this card and its card image.")
                      : translate("Setup", "%1 doesn't have room for this card."),
                  {place.name});
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> blocker(const OffloadKit::PlanRequest& request,
                                   const SourceCount& count) {
  if (request.source.empty()) return translate("Setup", "Choose a card to offload.");
  if (request.destinations.empty()) {
    return translate("Setup", "Add at least one drive to copy to.");
  }
  if (count.files == 0 && count.bytes == 0) return translate("Setup", "Reading the card…");
  return missingRoom(request, count.bytes);
}

}  // namespace ZephrimarkOffload
