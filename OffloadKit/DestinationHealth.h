#pragma once

#include "PlatformKit/System.h"

#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace OffloadKit {

/// Which destinations of a run are still of use, and the sentences for what went wrong on them. Any
/// thread, but for `errors`.
///
/// A pulled drive seldom says so: Linux answers EIO, EROFS and others while the volume goes on
/// being listed. Such an error counts as ENODEV once the drive's block device is gone from the
/// computer, and the destination is then given up, whatever was being done.
class DestinationHealth {
 public:
  /// `destinations` are existing folders; their devices are looked up now, while they answer.
  DestinationHealth(PlatformKit::System system, const std::vector<PlatformKit::Path>& destinations);

  /// The sentence for an error met while writing or flushing content there. Gives the destination
  /// up if the error means that the drive is of no more use.
  std::string contentError(std::size_t destination, int error);

  /// The sentence for any other error met there. Gives the destination up only if its drive is
  /// gone.
  std::string otherError(std::size_t destination, int error);

  /// Looks whether the destination still is where it was at the start: an unmounted drive leaves an
  /// empty folder behind, which lies on another volume, and a link may have been put in a folder's
  /// place. If not, gives it up as disconnected.
  void checkVolume(std::size_t destination);

  /// The sentence that made the run give the destination up; null while it is of use.
  [[nodiscard]] const std::string* givenUp(std::size_t destination) const;

  /// All destinations given up, with their sentences. Only when no other thread asks or tells.
  [[nodiscard]] const std::map<std::size_t, std::string>& errors() const { return givenUp_; }

 private:
  [[nodiscard]] bool isPulled(std::size_t destination, int error) const;
  /// Answers the sentence of the first reason.
  const std::string& giveUp(std::size_t destination, std::string sentence);

  struct Place {
    PlatformKit::Path folder;  ///< without links
    std::uint64_t volume;
    friend bool operator==(const Place&, const Place&) = default;
  };
  [[nodiscard]] std::optional<Place> placeOf(std::size_t destination) const;

  PlatformKit::System system_;
  std::vector<PlatformKit::Path> destinations_;
  std::vector<std::optional<PlatformKit::DeviceNumber>> devices_;
  std::vector<std::optional<Place>> places_;
  mutable std::mutex mutex_;
  std::map<std::size_t, std::string> givenUp_;  // the mutex's; what is in it stays as it is
};

}  // namespace OffloadKit
