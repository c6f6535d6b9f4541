#pragma once

#include "DeviceKit/DiskEnumerator.h"
#include "DeviceKit/RawDeviceAccess.h"
#include "DiskServices/UDisks.h"
#include "PlatformKit/Linux/LinuxDisks.h"
#include "PlatformKit/Linux/LinuxFileSystem.h"
#include "PlatformKit/Linux/LinuxRawDevices.h"
#include "PlatformKit/Linux/LinuxVolumes.h"
#include "PlatformKit/Posix/HelperOpener.h"
#include "PlatformKit/System.h"

namespace CommandLine {

/// The services of this computer, made once in main.
struct Services {
  PlatformKit::LinuxFileSystem fileSystem;
  PlatformKit::LinuxVolumes volumes;
  PlatformKit::SystemClock clock;
  PlatformKit::System system{fileSystem, volumes, clock};

  PlatformKit::LinuxDisks physicalDisks{volumes};
  DiskServices::UDisks udisks;
  DeviceKit::DiskEnumerator disks{physicalDisks, &udisks};

  // The desktop's disk service is asked first, since it knows the user's session; where there is
  // none, a helper of ours is started as the administrator.
  PlatformKit::LinuxRawDevices devices;
  PlatformKit::HelperOpener helper{{"pkexec", ZEPHRIMARK_DEVICE_HELPER}};
  DeviceKit::RawDeviceAccess rawDevices{devices, {&udisks, &helper}};
};

}  // namespace CommandLine
