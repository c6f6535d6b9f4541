#include "OffloadKit/Records/PlanRequest.h"

namespace OffloadKit {

std::string folderName(const PlanRequest& request) {
  return request.preset.resolve({request.now,
                                 request.sourceName.empty() ? "Card" : request.sourceName,
                                 request.camera, request.project});
}

std::optional<std::size_t> imageDestination(const PlanRequest& request) {
  const auto space = [&](std::size_t i) { return request.destinations[i].freeSpace.value_or(0); };
  std::optional<std::size_t> best;
  for (std::size_t i = 0; i < request.destinations.size(); ++i) {
    if (!best || space(i) > space(*best)) best = i;
  }
  return best;
}

OffloadPlan planFor(const PlanRequest& request) {
  OffloadPlan plan;
  plan.source = request.source;
  plan.sourceName = request.sourceName;
  const std::string folder = folderName(request);
  for (const PlanRequest::Destination& destination : request.destinations) {
    plan.destinations.push_back(destination.place.folder / folder);
    plan.chosen.push_back(destination.place);
  }
  plan.algorithm = request.algorithm;
  plan.verifySource = request.verifySource;
  plan.chunkSize = kUsualChunkSize;
  const auto receiver = imageDestination(request);
  if (request.imageOf && receiver) {
    plan.cardImage =
        CardImageRequest{request.imageOf->devicePath, *receiver, request.imageOf->size};
  }
  plan.made = request.now;
  return plan;
}

}  // namespace OffloadKit
