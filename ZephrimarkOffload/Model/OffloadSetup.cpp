#include "ZephrimarkOffload/Model/OffloadSetup.h"

#include "PlatformKit/Paths.h"
#include "TextKit/Unicode.h"
#include "ZephrimarkOffload/Model/Readiness.h"

#include <algorithm>

namespace ZephrimarkOffload {

using PlatformKit::Path;

OffloadSetup::OffloadSetup(Background& background, PlatformKit::VolumeWatcher& watcher,
                           Settings& settings, const PlatformKit::Clock& clock)
    : settings_(settings),
      clock_(clock),
      choices_(settings.load()),
      unconfirmed_(choices_.destinations),
      source_(background, [this] { emit sourceChanged(); }),
      destinations_(background, [this] { destinationsAnswered(); }),
      volumes_(background, [this](const std::optional<Path>& gone) { volumesListed(gone); }) {
  followDestinations();
  // An event that is on its way when the model goes is dropped.
  watcher.start([this, main = background.main()] { main->post([this] { refresh(); }); });
  refresh();
}

void OffloadSetup::save() {
  settings_.save(choices_);
}

// Volumes

void OffloadSetup::refresh() {
  volumes_.refresh(source()->path);
  destinations_.refresh();
}

void OffloadSetup::volumesListed(const std::optional<Path>& gone) {
  if (gone == source()->path) setSource({});
  if (!hasSource() && cards().size() == 1) setSource(cards().front().url);
  source_.check();
  emit volumesChanged();
}

std::vector<DeviceKit::Volume> OffloadSetup::suggestedDrives() const {
  std::vector<DeviceKit::Volume> suggested;
  for (const DeviceKit::Volume& drive : drives()) {
    const auto identifier = volumes_.identifier(drive.url);
    const auto holdsOne = [&](const Path& destination) {
      const auto facts = destinations_.facts(destination);
      if (facts && identifier) return facts->volume && *facts->volume == *identifier;
      // Not answered yet: judged by the path, so that no row comes and goes.
      return PlatformKit::isInside(destination, drive.url);
    };
    if (drive.url == source()->path) continue;
    if (std::none_of(destinations().begin(), destinations().end(), holdsOne)) {
      suggested.push_back(drive);
    }
  }
  return suggested;
}

// Destinations

void OffloadSetup::addDestination(const Path& destination) {
  auto chosen = destinations();
  const Path plain = normalized(destination);
  const bool isThere = std::find(chosen.begin(), chosen.end(), plain) != chosen.end();
  if (chosen.size() >= kMostDestinations || isThere) return;
  chosen.push_back(plain);
  replaceDestinations(std::move(chosen));
}

void OffloadSetup::removeDestination(const Path& destination) {
  auto chosen = destinations();
  std::erase(chosen, destination);
  replaceDestinations(std::move(chosen));
}

void OffloadSetup::setDestinations(std::vector<Path> destinations) {
  // Chosen now, not remembered: one that is not there yet will be made.
  unconfirmed_.clear();
  for (Path& destination : destinations) destination = normalized(destination);
  replaceDestinations(std::move(destinations));
}

void OffloadSetup::replaceDestinations(std::vector<Path> destinations) {
  choices_.destinations = std::move(destinations);
  save();
  followDestinations();
}

void OffloadSetup::followDestinations() {
  destinations_.follow(choices_.destinations);
  emit destinationsChanged();
}

void OffloadSetup::destinationsAnswered() {
  bool dropped = false;
  for (const Path& path : unconfirmed_) {
    const auto facts = destinations_.facts(path);
    if (facts && !facts->exists) dropped |= std::erase(choices_.destinations, path) > 0;
  }
  std::erase_if(unconfirmed_, [this](const Path& path) { return destinations_.facts(path); });
  if (dropped) {
    followDestinations();
  } else {
    emit destinationsChanged();
  }
}

std::optional<DestinationFacts> OffloadSetup::destinationFacts(std::size_t index) const {
  return destinations_.facts(destinations()[index]);
}

bool OffloadSetup::onlyInternalCopies() const {
  return !destinations().empty() &&
         std::all_of(destinations().begin(), destinations().end(), [this](const Path& path) {
           const auto facts = destinations_.facts(path);
           return facts && facts->isInternal;
         });
}

// What follows from the choices

OffloadKit::PlanRequest OffloadSetup::request() const {
  OffloadKit::PlanRequest request;
  request.source = source()->path;
  request.sourceName = source()->facts.name;
  request.camera = camera();
  request.preset = choices_.preset;
  request.project = choices_.project;
  for (const Path& path : destinations()) {
    OffloadKit::PlanRequest::Destination destination{
        {path, std::nullopt, PlatformKit::lastComponent(path)}};
    if (const auto facts = destinations_.facts(path)) {
      destination.place.volume = facts->volume;
      destination.place.name = TextKit::singleLineText(facts->volumeName);
      destination.freeSpace = facts->freeSpace;
    }
    request.destinations.push_back(std::move(destination));
  }
  request.algorithm = choices_.algorithm;
  request.verifySource = choices_.verifySource;
  const auto& disk = source()->facts.disk;
  if (choices_.saveCardImage && disk) request.imageOf = {disk->rawPath, disk->size};
  request.now = clock_.now();
  return request;
}

std::optional<std::string> OffloadSetup::blocker() const {
  return ZephrimarkOffload::blocker(request(), source()->count);
}

}  // namespace ZephrimarkOffload
