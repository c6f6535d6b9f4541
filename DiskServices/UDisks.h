#pragma once

#include "PlatformKit/RawDevices.h"

#include <string>

namespace DiskServices {

/// The disk service of the desktop, UDisks2 on the system bus, which opens and unmounts devices for
/// ordinary users and asks them for a password through the desktop where the policy wants one. Has
/// no state: each call makes a connection of its own. Any thread, several at once; never throws.
class UDisks final : public PlatformKit::PrivilegedOpener, public PlatformKit::Unmounter {
 public:
  /// `device` is a name of the kernel, such as "/dev/sdb". Waits for the user as long as it takes.
  ///
  /// - opened: the descriptor is read-only, close-on-exec, and the device's.
  /// - declined: the user dismissed the prompt, could not authenticate, or the policy says no.
  /// - unavailable: no bus, no UDisks2, it does not know the device, it could not open it, it
  ///   answered with something else than such a descriptor, or it had nobody to ask the user with.
  [[nodiscard]] Answer openReadOnly(const PlatformKit::Path& device) override;

  /// Unmounts what is mounted from the disk `identifier` ("sdb"), its partitions, what is decrypted
  /// from them, and other devices of the same drive, at all their mount points. Stops at the first
  /// that cannot be unmounted, since the next could ask the user again after a refusal.
  ///
  /// Answers true when nothing of it is mounted afterwards, and false as well when that cannot be
  /// told: no bus, no UDisks2, unknown disk.
  [[nodiscard]] bool unmountDisk(const std::string& identifier) override;
};

}  // namespace DiskServices
