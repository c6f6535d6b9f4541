#pragma once

#include "DeviceKit/DiskEnumerator.h"
#include "DeviceKit/Reason.h"
#include "PlatformKit/MountedVolumes.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ZephrimarkOffload {

/// What is known of a source without reading its files.
struct SourceFacts {
  std::string name;    ///< of the volume, for a whole one that has a name; else of the folder
  std::string camera;  ///< brand, "Camera" when it could not be told
  bool isVolumeRoot = false;                      ///< a mounted volume as a whole, as a card is
  std::optional<PlatformKit::VolumeSpace> space;  ///< of the volume, for a volume root
  std::optional<DeviceKit::WholeDisk> disk;       ///< under the volume, for a volume root
  std::optional<PlatformKit::VolumeIdentifier> volume = {};  ///< that it lies on

  friend bool operator==(const SourceFacts&, const SourceFacts&) = default;
};

/// How much an offload of a source would copy.
struct SourceCount {
  std::size_t files = 0;
  std::uint64_t bytes = 0;
};

/// What is known of a destination. It need not exist.
struct DestinationFacts {
  bool exists = false;
  bool isInternal = false;      ///< on the computer's own disk, judged by its nearest ancestor
  std::string volumeName;       ///< of the volume it lies on, else its own last component
  std::uint64_t freeSpace = 0;  ///< bytes; 0 when unknown
  std::optional<PlatformKit::VolumeIdentifier> volume;
  PlatformKit::Path volumeRoot = "/";  ///< where the volume of its nearest ancestor is mounted

  friend bool operator==(const DestinationFacts&, const DestinationFacts&) = default;
};

/// The sizes of a mounted volume and what tells it apart.
struct VolumeAnswers {
  std::optional<PlatformKit::VolumeSpace> space;
  std::optional<PlatformKit::VolumeIdentifier> identifier;
};

/// Everything the application asks of the disks. Only `volumes` answers at once: the others wait
/// for the volume that is asked, for good when it is a network's that went away. Nothing here
/// throws: what cannot be read shrinks the answer. Any thread but the one that draws the screen,
/// several at once.
class DiskQueries {
 public:
  virtual ~DiskQueries() = default;

  [[nodiscard]] virtual std::vector<PlatformKit::MountedVolume> volumes() = 0;
  [[nodiscard]] virtual VolumeAnswers volume(const PlatformKit::Path& root) = 0;

  /// Whether something is there, on a volume whose device is there.
  [[nodiscard]] virtual bool exists(const PlatformKit::Path& path) = 0;

  /// Whether it is a folder, through links too.
  [[nodiscard]] virtual bool isFolder(const PlatformKit::Path& path) = 0;

  [[nodiscard]] virtual SourceFacts source(const PlatformKit::Path& path) = 0;
  /// Lists the whole source, which takes a while; a source that cannot be listed has no files.
  [[nodiscard]] virtual SourceCount count(const PlatformKit::Path& path) = 0;
  [[nodiscard]] virtual DestinationFacts destination(const PlatformKit::Path& path) = 0;

  /// Unmounts and ejects the disk under the volume; none when that was done, else why not, in
  /// a reason that calls it `name`.
  [[nodiscard]] virtual std::optional<DeviceKit::Reason> eject(const PlatformKit::Path& volume,
                                                               const std::string& name) = 0;
};

}  // namespace ZephrimarkOffload
