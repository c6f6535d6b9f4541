#pragma once

#include "DeviceKit/RawDeviceAccess.h"
#include "DiskServices/DiskEjector.h"
#include "DiskServices/UDisks.h"
#include "PlatformKit/Linux/LinuxDisks.h"
#include "PlatformKit/Linux/LinuxFileSystem.h"
#include "PlatformKit/Linux/LinuxMountedVolumes.h"
#include "PlatformKit/Linux/LinuxRawDevices.h"
#include "PlatformKit/Linux/LinuxVolumeWatcher.h"
#include "PlatformKit/Linux/LinuxVolumes.h"
#include "PlatformKit/Posix/HelperOpener.h"
#include "PlatformKit/System.h"
#include "ZephrimarkOffload/Model/SystemDiskQueries.h"

namespace ZephrimarkOffload {

/// The services of this computer that the application works with. Shared, since a question to a dead
/// volume can outlive everything else.
struct Machine {
  PlatformKit::LinuxFileSystem fileSystem;
  PlatformKit::LinuxVolumes volumes;
  PlatformKit::SystemClock clock;
  PlatformKit::System system{fileSystem, volumes, clock};

  PlatformKit::LinuxDisks disks{volumes};
  PlatformKit::LinuxMountedVolumes mountedVolumes;
  DiskServices::DiskEjector ejector;
  SystemDiskQueries queries{system, mountedVolumes, disks, &ejector};

  // The desktop's disk service is asked first, since it knows the user's session; where there is
  // none, a helper of ours is started as the administrator.
  PlatformKit::LinuxRawDevices devices;
  DiskServices::UDisks udisks;
  PlatformKit::HelperOpener helper{
      {"pkexec",
       PlatformKit::helperProgram(PlatformKit::programFolder(), ZEPHRIMARK_DEVICE_HELPER)}};
  DeviceKit::RawDeviceAccess rawDevices{devices, {&udisks, &helper}};
};

}  // namespace ZephrimarkOffload
