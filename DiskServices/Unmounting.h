#pragma once

#include "DiskServices/SystemBus.h"

#include <string>

namespace DiskServices {

enum class Unmounting {
  nothingMounted,  ///< nothing of the disk is mounted any more
  comesBack,       ///< somebody keeps mounting it again
  unknownDisk,     ///< UDisks2 does not know it; nothing was done
};

/// Unmounts what is mounted from the whole disk `device` ("/dev/sdb"), its partitions, what is
/// decrypted from them, and other devices of the same drive, at all their mount points. Stops at
/// the first that cannot be unmounted, since the next could ask the user again after a refusal.
/// Waits for the user, and for the disk to take what was written to it, as long as that takes.
/// Throws BusError with what UDisks2 or the bus answered.
[[nodiscard]] Unmounting unmountAll(SystemBus& bus, const std::string& device);

}  // namespace DiskServices
