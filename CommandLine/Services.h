#pragma once

#include "DeviceKit/CardEjector.h"
#include "DeviceKit/DiskEnumerator.h"
#include "DeviceKit/RawDeviceAccess.h"
#include "DiskServices/DiskEjector.h"
#include "DiskServices/UDisks.h"
#include "PlatformKit/Linux/LinuxDisks.h"
#include "PlatformKit/Linux/LinuxFileSystem.h"
#include "PlatformKit/Linux/LinuxMountedVolumes.h"
#include "PlatformKit/Linux/LinuxRawDevices.h"
#include "PlatformKit/Linux/LinuxVolumes.h"
#include "PlatformKit/Posix/HelperOpener.h"
#include "PlatformKit/System.h"

#include <memory>

namespace CommandLine {

/// The services of this computer, made once in main.
struct Services {
  PlatformKit::LinuxFileSystem fileSystem;
  PlatformKit::LinuxVolumes volumes;
  PlatformKit::SystemClock clock;
  PlatformKit::System system{fileSystem, volumes, clock};

  // Shared with threads that wait for a dead volume longer than the program wants to.
  std::shared_ptr<PlatformKit::MountedVolumes> mountedVolumes =
      std::make_shared<PlatformKit::LinuxMountedVolumes>();

  PlatformKit::LinuxDisks physicalDisks{volumes};
  DiskServices::UDisks udisks;
  DeviceKit::DiskEnumerator disks{physicalDisks, &udisks};
  DiskServices::DiskEjector diskEjector;
  DeviceKit::CardEjector cardEjector{physicalDisks, &diskEjector};

  // The desktop's disk service is asked first, since it knows the user's session; where there is
  // none, a helper of ours is started as the administrator.
  PlatformKit::LinuxRawDevices devices;
  PlatformKit::HelperOpener helper{
      {"pkexec",
       PlatformKit::helperProgram(PlatformKit::programFolder(), ZEPHRIMARK_DEVICE_HELPER)}};
  DeviceKit::RawDeviceAccess rawDevices{devices, {&udisks, &helper}};
};

}  // namespace CommandLine
