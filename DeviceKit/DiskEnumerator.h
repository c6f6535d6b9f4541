#pragma once

#include "DeviceKit/ExternalDisk.h"
#include "PlatformKit/Disks.h"
#include "PlatformKit/RawDevices.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace DeviceKit {

/// The device to read a whole disk from.
struct WholeDisk {
  std::string identifier;  ///< such as "sdb"
  std::string rawPath;     ///< such as "/dev/sdb"
  std::uint64_t size = 0;  ///< bytes

  friend bool operator==(const WholeDisk&, const WholeDisk&) = default;
};

/// Finds the disks that can be memory cards, and the disk behind a volume. Every call asks the
/// system anew, and none fails: what cannot be found out shrinks the answer. Calls may block on
/// slow hardware; any thread but the one that draws the screen, several at once.
class DiskEnumerator {
 public:
  /// `unmounter`: null when nothing can be unmounted. Both outlive this object.
  DiskEnumerator(PlatformKit::Disks& disks, PlatformKit::Unmounter* unmounter)
      : disks_(disks), unmounter_(unmounter) {}

  /// The disks that are like memory cards, in the order of their identifiers; with disk images
  /// (files attached as disks) or without.
  [[nodiscard]] std::vector<ExternalDisk> externalDisks(bool includeDiskImages) const;

  /// Unmounts every volume of the whole disk ("sdb") and answers whether none is mounted any more;
  /// false when there is nobody to do it. May wait for the user's password.
  [[nodiscard]] bool unmountDisk(const std::string& identifier) const;

  /// The whole disk under the volume mounted at `volume` (any item on it will do); none for network
  /// and memory volumes, and for volumes that span several disks.
  [[nodiscard]] std::optional<WholeDisk> wholeDisk(const PlatformKit::Path& volume) const;

  /// Whether it could be a memory card: every external disk, and what is built in if its medium can
  /// be taken out. Never a disk that the system runs from or made up. Disk images are as allowed,
  /// whatever else is known of them.
  [[nodiscard]] static bool isMemoryCardLike(const PlatformKit::DiskFacts& disk,
                                             bool allowDiskImages);

  /// The disk as a picker shows it.
  [[nodiscard]] static ExternalDisk externalDisk(const PlatformKit::DiskFacts& disk);

 private:
  PlatformKit::Disks& disks_;
  PlatformKit::Unmounter* unmounter_;
};

}  // namespace DeviceKit
