#pragma once

#include "OffloadKit/Records/OffloadPlan.h"
#include "OffloadKit/Records/Reason.h"
#include "PlatformKit/System.h"

#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>

namespace OffloadKit {

/// A destination of a run that is held open: its folder, what is known of its drive, and whether it
/// is still of use. It knows what an error means that is met there. Any thread, but for `open` and
/// `close`, which belong to the run's.
///
/// A pulled drive seldom says so: Linux answers EIO, EROFS, on FAT even ENOENT, while the volume
/// goes on being listed. Any error counts as ENODEV once the drive's block device is gone from the
/// computer, and the destination is then given up, whatever was being done.
class HeldDestination {
 public:
  /// Made before anything else is done, while the drives are where the user saw them: notes which
  /// volume and device that is. `plan` outlives it; `index`: which of its destinations.
  HeldDestination(PlatformKit::System system, const OffloadPlan& plan, std::size_t index);

  /// What people read; a run reaches everything by `folder`.
  [[nodiscard]] const PlatformKit::Path& path() const { return plan_.destinations[index_]; }

  /// Makes the destination's folder, unless it is there, and holds it. Throws
  /// OffloadError::destinationUnavailable when that fails or it is not where it was chosen.
  void open();
  /// The held folder; other volumes mounted below it do not belong to it. Only behind `open`.
  [[nodiscard]] PlatformKit::Folder& folder() const { return *folder_; }
  /// Which folder that is, under whatever path. Only behind `open`.
  [[nodiscard]] PlatformKit::ItemIdentity identity() const { return identity_; }
  /// Lets go of the folder, so that its volume can be unmounted. Nothing can be done here then.
  void close() { folder_.reset(); }

  /// Whether the path leads to where it led: before `open`, what the destination was chosen as and
  /// what there is of its path lie on the volumes of then; behind it, the held folder is found at
  /// its path. What cannot be told counts as yes, since nothing is done by path any more.
  [[nodiscard]] bool isInPlace() const;
  /// Whether it is in place, and its drive has not been pulled.
  [[nodiscard]] bool isPresent() const { return isInPlace() && !isPulled(); }
  /// Gives it up as disconnected unless it is in place.
  void checkPlace();

  /// What an error means that is met while writing or flushing content. Gives it up if the
  /// error means that the drive is of no more use: EIO, ENXIO, ENODEV or ENOSPC.
  Reason contentError(int error);
  /// The same for any other error. Gives it up only if its drive is gone.
  Reason otherError(int error);

  /// What made the run give it up; null while it is of use. Stays as it is.
  [[nodiscard]] const Reason* givenUp() const;
  /// Whether it was given up because it is not there any more: nothing may be written to it.
  [[nodiscard]] bool isDisconnected() const;

  /// See PlatformKit::VolumeFacts.
  [[nodiscard]] bool moveKeepsContent() const { return moveKeepsContent_; }
  [[nodiscard]] bool readsThroughCache() const { return readsThroughCache_; }

 private:
  [[nodiscard]] bool isPulled() const;
  [[nodiscard]] bool isOn(const PlatformKit::Path& folder,
                          std::optional<PlatformKit::VolumeIdentifier> volume) const;
  /// Answers the first reason.
  const Reason& giveUp(Reason reason, bool isDisconnected);

  PlatformKit::System system_;
  const OffloadPlan& plan_;
  const std::size_t index_;
  std::optional<PlatformKit::VolumeIdentifier> volume_;
  std::optional<PlatformKit::DeviceNumber> device_;
  bool moveKeepsContent_ = false;
  bool readsThroughCache_ = false;
  std::unique_ptr<PlatformKit::Folder> folder_;
  PlatformKit::ItemIdentity identity_;  // the held folder's
  mutable std::mutex mutex_;
  // The mutex's; a reason, once given, stays as it is.
  std::optional<Reason> givenUp_;
  bool isDisconnected_ = false;
};

/// Whether an error means that the drive itself is of no more use in this run: EIO, ENXIO, ENODEV
/// or ENOSPC.
[[nodiscard]] bool endsTheDrive(int error);

}  // namespace OffloadKit
