#include "Composition/Machine.h"

#include "DiskServices/DiskEjector.h"
#include "DiskServices/UDisks.h"
#include "PlatformKit/Linux/LinuxDisks.h"
#include "PlatformKit/Linux/LinuxFileSystem.h"
#include "PlatformKit/Linux/LinuxMountedVolumes.h"
#include "PlatformKit/Linux/LinuxRawDevices.h"
#include "PlatformKit/Linux/LinuxVolumeWatcher.h"
#include "PlatformKit/Linux/LinuxVolumes.h"
#include "PlatformKit/Posix/HelperOpener.h"

namespace Composition {

struct Machine::Parts {
  PlatformKit::LinuxFileSystem fileSystem;
  PlatformKit::LinuxVolumes volumes;
  PlatformKit::SystemClock clock;
  PlatformKit::LinuxMountedVolumes mountedVolumes;
  PlatformKit::LinuxDisks disks{volumes};
  DiskServices::DiskEjector ejector;

  // The desktop's disk service is asked first, since it knows the user's session; where there is
  // none, a helper of ours is started as the administrator.
  PlatformKit::LinuxRawDevices devices;
  DiskServices::UDisks udisks;
  PlatformKit::HelperOpener helper{
      {"pkexec",
       PlatformKit::helperProgram(PlatformKit::programFolder(), ZEPHRIMARK_DEVICE_HELPER)}};
  DeviceKit::RawDeviceAccess rawDevices{devices, {&udisks, &helper}};
};

Machine::Machine() : parts_(std::make_unique<Parts>()) {}

Machine::~Machine() = default;

PlatformKit::System Machine::platform() const {
  return {parts_->fileSystem, parts_->volumes, parts_->clock};
}

PlatformKit::MountedVolumes& Machine::mountedVolumes() const {
  return parts_->mountedVolumes;
}

PlatformKit::Disks& Machine::disks() const {
  return parts_->disks;
}

PlatformKit::Ejector& Machine::ejector() const {
  return parts_->ejector;
}

const DeviceKit::RawDeviceAccess& Machine::rawDevices() const {
  return parts_->rawDevices;
}

std::unique_ptr<PlatformKit::VolumeWatcher> Machine::makeVolumeWatcher() {
  return std::make_unique<PlatformKit::LinuxVolumeWatcher>();
}

}  // namespace Composition
