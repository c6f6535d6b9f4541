#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace DeviceKit {

/// One whole disk as a picker shows it. Names are bytes as the device and its volumes tell them,
/// UTF-8 if all is well. The functions fail for nothing; any thread.
struct ExternalDisk {
  std::string deviceIdentifier;  ///< such as "sdb"
  std::string mediaName;         ///< maker and model; may be empty
  std::uint64_t sizeBytes = 0;
  std::vector<std::string> volumeNames;  ///< none of them empty; in the order of the partitions

  /// Tells disks apart: the device identifier.
  [[nodiscard]] const std::string& id() const { return deviceIdentifier; }

  /// The device to read the whole disk from, such as "/dev/sdb".
  [[nodiscard]] std::string rawDevicePath() const { return "/dev/" + deviceIdentifier; }

  /// The names of its volumes, separated by commas; without any the media name, and without that
  /// the device identifier.
  [[nodiscard]] std::string displayName() const;

  /// The size for people, in their language, such as "63.9 GB".
  [[nodiscard]] std::string sizeDescription() const;

  /// Whether a whole word of the media name says that it is a memory card or a reader of one:
  /// "SDXC Reader" does, "Cardinal Drive" does not.
  [[nodiscard]] bool isMemoryCard() const;

  friend bool operator==(const ExternalDisk&, const ExternalDisk&) = default;
};

}  // namespace DeviceKit
