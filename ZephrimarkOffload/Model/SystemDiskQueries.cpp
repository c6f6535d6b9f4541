#include "ZephrimarkOffload/Model/SystemDiskQueries.h"

#include "DeviceKit/Places.h"
#include "OffloadKit/Card/CameraName.h"
#include "OffloadKit/Card/SourceScan.h"
#include "OffloadKit/Records/FolderPreset.h"
#include "PlatformKit/Paths.h"

#include <exception>

namespace ZephrimarkOffload {

using PlatformKit::Path;

std::vector<PlatformKit::MountedVolume> SystemDiskQueries::volumes() {
  return mounted_.list();
}

VolumeAnswers SystemDiskQueries::volume(const Path& root) {
  return {mounted_.space(root), system_.volumes.facts(root).identifier};
}

bool SystemDiskQueries::exists(const Path& path) {
  if (!system_.fileSystem.resolve(path).ok()) return false;
  // What was read of a pulled card before still answers.
  const auto device = system_.volumes.facts(path).device;
  return !device || !system_.volumes.isGone(*device);
}

bool SystemDiskQueries::isFolder(const Path& path) {
  return PlatformKit::isFolder(system_.fileSystem, path);
}

SourceFacts SystemDiskQueries::source(const Path& path) {
  SourceFacts facts;
  facts.volume = system_.volumes.facts(path).identifier;
  facts.name = DeviceKit::sourceName(system_, path);
  facts.camera = OffloadKit::cameraName(system_.fileSystem, path);
  facts.isVolumeRoot = DeviceKit::isVolumeRoot(system_, path);
  if (!facts.isVolumeRoot) return facts;
  facts.space = mounted_.space(path);
  facts.disk = DeviceKit::DiskEnumerator(disks_, nullptr).wholeDisk(path);
  return facts;
}

SourceCount SystemDiskQueries::count(const Path& path) {
  SourceCount count;
  try {
    for (const auto& file : OffloadKit::scan(system_, path).files) {
      ++count.files;
      count.bytes += file.size;
    }
  } catch (const std::exception&) {
    // The source cannot be listed: nothing to copy, which keeps an offload from being started.
    return {};
  }
  return count;
}

DestinationFacts SystemDiskQueries::destination(const Path& path) {
  DestinationFacts facts;
  facts.exists = exists(path);
  facts.volumeName = DeviceKit::volumeName(system_, path);
  facts.freeSpace = DeviceKit::freeSpace(system_, path);
  facts.volume = system_.volumes.facts(path).identifier;
  const Path existing = PlatformKit::nearestExisting(system_.fileSystem, path);
  facts.volumeRoot = system_.volumes.facts(existing).root.value_or("/");
  const auto volume = mounted_.holding(existing);
  facts.isInternal = volume && (volume->isRootFileSystem || volume->isInternal);
  return facts;
}

std::optional<DeviceKit::Reason> SystemDiskQueries::eject(const Path& volume,
                                                          const std::string& name) {
  // Once a card is taken out, its folder may lie on another disk.
  if (!DeviceKit::isVolumeRoot(system_, volume)) {
    return DeviceKit::Reason(DeviceKit::Reason::Kind::notMounted, {name});
  }
  return ejector_.eject(volume, name);
}

}  // namespace ZephrimarkOffload
