#pragma once

#include "PlatformKit/RawDevices.h"

#include <memory>
#include <string>
#include <vector>

namespace DeviceKit {

/// Opens raw devices read-only: plainly first, and when the system refuses that, with the user's
/// authorization.
class RawDeviceAccess {
 public:
  /// `privileged`: the ways to have a device opened for the user, asked in this order. All
  /// arguments outlive this object.
  RawDeviceAccess(PlatformKit::RawDevices& devices,
                  std::vector<PlatformKit::PrivilegedOpener*> privileged)
      : devices_(devices), privileged_(std::move(privileged)) {}

  /// The open device; it is read-only and close-on-exec. Blocks while the system asks for a
  /// password; any thread but the one that draws the screen. Throws DeviceError::cannotOpen, and
  /// authorizationDenied when a plain open does not suffice and the user, or everybody there was to
  /// ask, said no. A no is final: nobody else is asked after it.
  [[nodiscard]] std::unique_ptr<PlatformKit::RawDevice> openReadOnly(const std::string& path) const;

 private:
  [[nodiscard]] std::unique_ptr<PlatformKit::RawDevice> openPrivileged(
      const std::string& path) const;

  PlatformKit::RawDevices& devices_;
  std::vector<PlatformKit::PrivilegedOpener*> privileged_;
};

}  // namespace DeviceKit
