#pragma once

#include "DeviceKit/RawDeviceAccess.h"
#include "PlatformKit/Disks.h"
#include "PlatformKit/Ejector.h"
#include "PlatformKit/MountedVolumes.h"
#include "PlatformKit/System.h"
#include "PlatformKit/VolumeWatcher.h"

#include <memory>

namespace Composition {

/// The services of this computer, put together once for whichever program runs: the one place that
/// knows which implementation stands behind an interface. To make one does nothing but that. What
/// it hands out lives as long as it does and is safe to use from several threads; a query to a dead
/// volume can outlive everything else, so whoever asks on threads that may be left behind shares
/// the machine with them.
class Machine {
 public:
  Machine();
  ~Machine();
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

  /// File system, volumes and clock.
  [[nodiscard]] PlatformKit::System platform() const;
  [[nodiscard]] PlatformKit::MountedVolumes& mountedVolumes() const;
  [[nodiscard]] PlatformKit::Disks& disks() const;
  /// Ejects disks through the desktop's disk service.
  [[nodiscard]] PlatformKit::Ejector& ejector() const;
  /// Opens devices plainly, else through the desktop's disk service, else through a helper of ours
  /// that is started as the administrator.
  [[nodiscard]] const DeviceKit::RawDeviceAccess& rawDevices() const;

  /// A new one that watches nothing before it is started. Needs no machine.
  [[nodiscard]] static std::unique_ptr<PlatformKit::VolumeWatcher> makeVolumeWatcher();

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace Composition
