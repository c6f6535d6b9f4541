#pragma once

#include "DeviceKit/Reason.h"
#include "PlatformKit/Disks.h"
#include "PlatformKit/Ejector.h"

#include <optional>
#include <string>

namespace DeviceKit {

/// Ejects the card under a volume and tells why that did not work. Every call asks the
/// system anew; any thread but the one that draws the screen, several at once.
class CardEjector {
 public:
  /// `ejector`: null when nothing can be ejected. Both outlive this object.
  CardEjector(PlatformKit::Disks& disks, PlatformKit::Ejector* ejector)
      : disks_(disks), ejector_(ejector) {}

  /// Unmounts every volume of the whole disk under the volume mounted at `volume`, and ejects the
  /// disk or switches it off where it can be. What it does is about the disk that is there now: the
  /// caller makes sure that the volume is still mounted. A disk that cannot be a memory card, such
  /// as the one the system runs from, is left alone.
  ///
  /// Answers none when it was done and the card may be taken out. Else why not, in
  /// one or two sentences that also say what to do. They call the volume `name`, bytes as given.
  /// Blocks while the disk takes what was written to it and while the user is asked for a password,
  /// which can take minutes. Never throws.
  [[nodiscard]] std::optional<Reason> eject(const PlatformKit::Path& volume,
                                            const std::string& name) const;

 private:
  PlatformKit::Disks& disks_;
  PlatformKit::Ejector* ejector_;
};

}  // namespace DeviceKit
