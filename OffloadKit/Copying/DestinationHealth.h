#pragma once

#include "OffloadKit/Records/OffloadPlan.h"
#include "OffloadKit/Records/Reason.h"
#include "PlatformKit/System.h"

#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace OffloadKit {

/// Whether an error means that the drive itself is of no more use in this run: EIO, ENXIO, ENODEV
/// or ENOSPC.
bool endsTheDrive(int error);

/// Which destinations of a run are still of use, and the reasons for what went wrong on them. Any
/// thread, but for `settle` and `errors`.
///
/// A pulled drive seldom says so: Linux answers EIO, EROFS, on FAT even ENOENT, while the volume goes
/// on being listed. Any error counts as ENODEV once the drive's block device is gone from the computer,
/// and the destination is then given up, whatever was being done.
class DestinationHealth {
 public:
  /// Made before anything else is done, while the drives are where the user saw them. `plan` outlives
  /// it.
  DestinationHealth(PlatformKit::System system, const OffloadPlan& plan);

  /// The destinations' folders are there now and must stay where they are; for `isInPlace`.
  void settle();

  /// Whether what the destination was chosen as lies on the volume of then, and the destination, or
  /// what there is of its path, on the one of the run's beginning, as the folder that it was when it
  /// was settled: a drive that is unmounted leaves a folder behind, on the computer's own disk, and a
  /// link may have been put in a folder's place.
  [[nodiscard]] bool isInPlace(std::size_t destination) const;

  /// Whether it is in place, and its drive has not been pulled.
  [[nodiscard]] bool isPresent(std::size_t destination) const;

  /// Gives the destination up as disconnected unless it is in place.
  void checkPlace(std::size_t destination);

  /// The reason for an error met while writing or flushing content there. Gives the destination
  /// up if the error means that the drive is of no more use.
  Reason contentError(std::size_t destination, int error);

  /// The reason for any other error met there. Gives the destination up only if its drive is
  /// gone.
  Reason otherError(std::size_t destination, int error);

  /// The reason that made the run give the destination up; null while it is of use.
  [[nodiscard]] const Reason* givenUp(std::size_t destination) const;

  /// Whether it was given up because it is not there any more: nothing may be written to its path.
  [[nodiscard]] bool isDisconnected(std::size_t destination) const;

  /// See PlatformKit::VolumeFacts::moveKeepsContent.
  [[nodiscard]] bool moveKeepsContent(std::size_t destination) const {
    return drives_[destination].moveKeepsContent;
  }

  /// All destinations given up, with their reasons. Only when no other thread asks or tells.
  [[nodiscard]] std::map<std::size_t, Reason> errors() const;

 private:
  struct Drive {
    ChosenPlace chosen;
    PlatformKit::Path folder;
    std::optional<PlatformKit::VolumeIdentifier> volume;
    std::optional<PlatformKit::DeviceNumber> device;
    bool moveKeepsContent = false;
    std::optional<PlatformKit::Path> settled;  ///< without links
  };
  struct GivenUp {
    Reason reason;
    bool isDisconnected;
  };
  [[nodiscard]] bool isPulled(std::size_t destination) const;
  [[nodiscard]] bool isOn(const PlatformKit::Path& folder,
                          std::optional<PlatformKit::VolumeIdentifier> volume) const;
  /// Answers the first reason.
  const Reason& giveUp(std::size_t destination, GivenUp givenUp);

  PlatformKit::System system_;
  std::vector<Drive> drives_;
  mutable std::mutex mutex_;
  std::map<std::size_t, GivenUp> givenUp_;  // the mutex's; its reasons stay as they are
};

}  // namespace OffloadKit
