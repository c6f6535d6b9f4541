#include "DeviceKit/SourceOpener.h"

#include "DeviceKit/BlockDeviceSource.h"
#include "DeviceKit/DeviceError.h"
#include "DeviceKit/FileSource.h"

namespace DeviceKit::SourceOpener {

std::unique_ptr<ByteSource> open(PlatformKit::RawDevices& devices, const RawDeviceAccess& access,
                                 const std::string& path) {
  const auto kind = devices.kind(path);
  if (!kind.ok()) throw DeviceError::cannotOpen(path, kind.error());
  switch (kind.value()) {
    case PlatformKit::RawKind::device:
      return std::make_unique<BlockDeviceSource>(access.openReadOnly(path), path);
    case PlatformKit::RawKind::regularFile:
      return std::make_unique<FileSource>(devices, path);
    case PlatformKit::RawKind::other:
      break;
  }
  throw DeviceError::notAFileOrDevice(path);
}

}  // namespace DeviceKit::SourceOpener
