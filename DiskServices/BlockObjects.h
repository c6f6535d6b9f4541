#pragma once

#include "DiskServices/SystemBus.h"

#include <cstddef>
#include <string>
#include <vector>

namespace DiskServices {

/// What UDisks2 tells of one block device. Objects are D-Bus paths; "/" or empty is none.
struct BlockObject {
  std::string object;
  std::string device;     ///< as "/dev/sdb1"
  std::string drive;      ///< object of the drive it is part of
  std::string table;      ///< object of the disk whose partition it is
  std::string encrypted;  ///< object of the device it is the decrypted content of
  std::size_t mountPoints = 0;
};

/// All block devices. Throws BusError when UDisks2 is not there or answers nonsense.
[[nodiscard]] std::vector<BlockObject> blockObjects(SystemBus& bus);

/// The one with this device, as "/dev/sdb1"; null when there is none. Points into `blocks`.
[[nodiscard]] const BlockObject* findDevice(const std::vector<BlockObject>& blocks,
                                            const std::string& device);

/// Whether what is on `block` lies on the whole disk `disk`: on itself, a partition, another device
/// of the same drive, or decrypted from one of these. Both from `blocks`.
[[nodiscard]] bool liesOn(const BlockObject& block, const BlockObject& disk,
                          const std::vector<BlockObject>& blocks);

}  // namespace DiskServices
