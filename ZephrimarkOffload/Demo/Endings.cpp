#include "ZephrimarkOffload/Demo/Endings.h"

#include <algorithm>
#include <cerrno>
#include <chrono>

namespace ZephrimarkOffload::Demo {
namespace {

using OffloadKit::CardImageResult;
using OffloadKit::OffloadedFile;
using OffloadKit::OffloadPlan;
using OffloadKit::OffloadResult;

constexpr double kBytesPerSecond = 182'700'000;

}  // namespace

OffloadResult verified(const OffloadPlan& plan, const Files& files) {
  OffloadResult result;
  result.plan = plan;
  const std::vector<OffloadedFile::Outcome> outcomes(plan.destinations.size(),
                                                     OffloadedFile::Outcome::verified(false));
  for (const auto& file : files) result.files.push_back({file, "4f9a0c1d2e3b5768", outcomes});
  for (const auto& folder : plan.destinations) {
    result.reports.push_back(folder / "Offload Report.html");
    result.mhlFiles.push_back(folder / "ascmhl" / "0001.mhl");
  }
  const std::chrono::duration<double> took(static_cast<double>(result.totalBytes()) /
                                           kBytesPerSecond);
  result.finished = result.started + std::chrono::duration_cast<std::chrono::seconds>(took);
  return result;
}

OffloadResult disconnected(const OffloadPlan& plan, const Files& files, std::size_t missing) {
  OffloadResult result = verified(plan, files);
  const OffloadKit::Reason reason(OffloadKit::Reason::Kind::disconnected);
  const std::size_t pulled = plan.destinations.size() - 1;
  result.destinationErrors.emplace(pulled, reason);
  result.reports.pop_back();
  result.mhlFiles.pop_back();
  for (std::size_t i = files.size() - std::min(missing, files.size()); i < files.size(); ++i) {
    result.files[i].outcomes[pulled] = OffloadedFile::Outcome::failed(reason);
  }
  return result;
}

OffloadResult partlyUnreadable(const OffloadPlan& plan, const Files& files) {
  OffloadResult result = verified(plan, files);
  const auto unread = OffloadKit::Reason::ofSystem(EIO);
  result.unreadable = {{"CLIPS/A021", unread}, {"CLIPS/A007/A007C052_261007.MXF", unread}};
  return result;
}

OffloadResult withCardImage(const OffloadPlan& plan, const Files& files) {
  OffloadResult result = verified(plan, files);
  constexpr const char* kName = "Card Image/A001_2026-10-07_1432.img";
  CardImageResult image;
  image.url = plan.destinations.front() / kName;
  image.size = plan.cardImage ? plan.cardImage->size : 0;
  image.unreadableBlocks = 3;
  image.outcome = CardImageResult::Outcome::verified();
  image.relativePath = kName;
  result.cardImage = image;
  return result;
}

}  // namespace ZephrimarkOffload::Demo
