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

/// What UDisks2 tells of one drive.
struct DriveObject {
  std::string object;
  std::string siblings;  ///< the same for all drives that have one supply of power; may be empty
  bool ejectable = false;
  bool canPowerOff = false;
};

/// What UDisks2 knows at one moment.
struct DiskObjects {
  std::vector<BlockObject> blocks;
  std::vector<DriveObject> drives;
};

/// Asks for all of it. Throws BusError when UDisks2 is not there or answers nonsense.
[[nodiscard]] DiskObjects diskObjects(SystemBus& bus);

/// The one with this device, as "/dev/sdb1"; null when there is none. Points into `blocks`.
[[nodiscard]] const BlockObject* findDevice(const std::vector<BlockObject>& blocks,
                                            const std::string& device);

/// The drive with this object; null when there is none. Points into `drives`.
[[nodiscard]] const DriveObject* findDrive(const std::vector<DriveObject>& drives,
                                           const std::string& object);

/// Whether what is on `block` lies on the whole disk `disk`: on itself, a partition, another device
/// of the same drive, or decrypted from one of these. Both from `blocks`.
[[nodiscard]] bool liesOn(const BlockObject& block, const BlockObject& disk,
                          const std::vector<BlockObject>& blocks);

}  // namespace DiskServices
