#include "OffloadKit/DestinationHealth.h"

#include "OffloadKit/ErrorSentences.h"

#include <cerrno>

namespace OffloadKit {

DestinationHealth::DestinationHealth(PlatformKit::System system,
                                     const std::vector<PlatformKit::Path>& destinations)
    : system_(system), destinations_(destinations) {
  for (std::size_t i = 0; i < destinations.size(); ++i) {
    devices_.push_back(system.volumes.facts(destinations[i]).device);
    places_.push_back(placeOf(i));
  }
}

void DestinationHealth::checkVolume(std::size_t destination) {
  if (places_[destination] && placeOf(destination) != places_[destination]) {
    giveUp(destination, describe(ENODEV));
  }
}

std::optional<DestinationHealth::Place> DestinationHealth::placeOf(std::size_t destination) const {
  const auto folder = system_.fileSystem.resolve(destinations_[destination]);
  if (!folder.ok()) return std::nullopt;
  const auto status = system_.fileSystem.status(folder.value());
  if (!status.ok()) return std::nullopt;
  return Place{folder.value(), status.value().identity.volume};
}

std::string DestinationHealth::contentError(std::size_t destination, int error) {
  std::string sentence = otherError(destination, error);
  if (endsTheDrive(error)) giveUp(destination, sentence);
  return sentence;
}

std::string DestinationHealth::otherError(std::size_t destination, int error) {
  if (!isPulled(destination, error)) return describe(error);
  return giveUp(destination, describe(ENODEV));
}

const std::string& DestinationHealth::giveUp(std::size_t destination, std::string sentence) {
  const std::lock_guard lock(mutex_);
  return givenUp_.emplace(destination, std::move(sentence)).first->second;
}

const std::string* DestinationHealth::givenUp(std::size_t destination) const {
  const std::lock_guard lock(mutex_);
  const auto found = givenUp_.find(destination);
  return found == givenUp_.end() ? nullptr : &found->second;
}

bool DestinationHealth::isPulled(std::size_t destination, int error) const {
  switch (error) {
    case EIO:
    case EROFS:
    case ENOTCONN:
    case ESHUTDOWN:
    case ENODATA:
      return devices_[destination] && system_.volumes.isGone(*devices_[destination]);
    default:
      return false;
  }
}

}  // namespace OffloadKit
