#pragma once

#include "PlatformKit/Ejector.h"

#include <string>

namespace DiskServices {

/// Ejects disks through UDisks2 on the system bus, which asks for a password through the desktop
/// where the policy wants one. Has no state: each call makes a connection of its own. Any thread,
/// several at once; never throws.
class DiskEjector final : public PlatformKit::Ejector {
 public:
  /// Unmounts everything of the disk `identifier` ("sdb"), locks what was decrypted from it, then
  /// ejects its medium if the drive can, so that other cards in the same reader stay. Otherwise the
  /// drive is switched off, if it can be without switching off others. Waits for the user and the
  /// disk as long as it takes.
  ///
  /// - ejected: also when the drive turns out to know no ejecting, or is gone once it is unmounted.
  /// - unmountedOnly: all is unmounted, but what follows failed or was not allowed.
  /// - busy: also when somebody keeps mounting it again.
  /// - declined: the user dismissed the prompt, the policy says no, or it wants the user to be
  ///   asked and nobody is there to do so.
  /// - unavailable: no bus, no UDisks2, it does not know the disk, or it ended before it answered.
  /// - failed: every other error of UDisks2.
  [[nodiscard]] Answer ejectDisk(const std::string& identifier) override;
};

}  // namespace DiskServices
