#include "PlatformKit/Linux/LinuxDisks.h"

#include "PlatformKit/Linux/BlockDevices.h"
#include "PlatformKit/Linux/BlockVolumes.h"
#include "PlatformKit/Linux/MountedDevices.h"

#include <algorithm>
#include <map>
#include <set>

namespace PlatformKit {
namespace {

/// The devices and mounts of one moment.
class Moment {
 public:
  explicit Moment(const LinuxDisks::Roots& roots)
      : roots_(roots), mounted_(roots.mountInfo, roots.sys) {
    for (const Mount& mount : mounted_.mounts()) {
      // Later mounts of the same device are folders of it that appear in a second place.
      if (const auto* device = mounted_.under(mount)) mountPoints_.emplace(device, mount.point);
    }
  }

  [[nodiscard]] const BlockDevices& devices() const { return mounted_.devices(); }

  /// None when the device is no disk with a medium of its own.
  [[nodiscard]] std::optional<DiskFacts> factsOf(const BlockDevice& device) const {
    if (!devices().isWhole(device) || !device.slaves.empty()) return std::nullopt;
    const bool isOptical = device.folder.filename().native().starts_with("sr");
    if (isOptical || hasNoMedium(device)) return std::nullopt;
    DiskFacts facts = mounted_.factsOf(device);
    const bool isUnusedLoop = facts.identifier.starts_with("loop") && !facts.isDiskImage;
    if (facts.sizeBytes == 0 || isUnusedLoop) return std::nullopt;
    std::set<const BlockDevice*> named;
    addVolumeNames(device, named, facts.volumeNames);
    return facts;
  }

 private:
  // The label of a device that others are made of is that of the container. So it counts only when
  // nothing in it has a name. A device that is made of several parts of a disk counts once.
  void addVolumeNames(const BlockDevice& device, std::set<const BlockDevice*>& named,
                      std::vector<std::string>& names) const {
    if (!named.insert(&device).second) return;
    const std::size_t before = names.size();
    for (const BlockDevice* above : devices().on(device)) addVolumeNames(*above, named, names);
    if (names.size() > before) return;
    std::string name = nameOf(device);
    if (!name.empty()) names.push_back(std::move(name));
  }

  [[nodiscard]] std::string nameOf(const BlockDevice& device) const {
    if (auto label = volumeLabel(roots_.udevData, device.number)) return *label;
    const auto mounted = mountPoints_.find(&device);
    return mounted == mountPoints_.end() ? std::string() : mounted->second.filename().native();
  }

  const LinuxDisks::Roots& roots_;
  MountedDevices mounted_;
  std::map<const BlockDevice*, Path> mountPoints_;
};

}  // namespace

std::vector<DiskFacts> LinuxDisks::list() {
  const Moment now(roots_);
  std::vector<DiskFacts> disks;
  for (const BlockDevice& device : now.devices().all()) {
    if (auto facts = now.factsOf(device)) disks.push_back(std::move(*facts));
  }
  std::sort(disks.begin(), disks.end(),
            [](const auto& a, const auto& b) { return a.identifier < b.identifier; });
  return disks;
}

std::optional<DiskFacts> LinuxDisks::holding(const Path& path) {
  const auto number = volumes_.facts(path).device;
  if (!number) return std::nullopt;
  const Moment now(roots_);
  const BlockDevice* device = now.devices().find(*number);
  if (device == nullptr) return std::nullopt;
  const auto bearers = now.devices().bearersOf(*device);
  if (bearers.size() != 1) return std::nullopt;
  return now.factsOf(*bearers.front());
}

}  // namespace PlatformKit
