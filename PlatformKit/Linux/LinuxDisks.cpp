#include "PlatformKit/Linux/LinuxDisks.h"

#include "PlatformKit/Linux/BlockDevices.h"
#include "PlatformKit/Linux/BlockVolumes.h"
#include "PlatformKit/Linux/SysDisk.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <string_view>

namespace PlatformKit {
namespace {

/// The devices and mounts of one moment.
class Moment {
 public:
  explicit Moment(const LinuxDisks::Roots& roots) : roots_(roots), devices_(roots.sys) {
    for (const Mount& mount : readMounts(roots.mountInfo)) {
      const auto number = blockDeviceOf(mount);
      // The mount of a pulled disk stays listed.
      const BlockDevice* device = number ? devices_.find(*number) : nullptr;
      if (device == nullptr) continue;
      // Later mounts of the same device are folders of it that appear in a second place.
      mountPoints_.emplace(device, mount.point);
      if (!isSystemMount(mount.point.native())) continue;
      const auto bearers = devices_.bearersOf(*device);
      systemDisks_.insert(bearers.begin(), bearers.end());
    }
  }

  [[nodiscard]] const BlockDevices& devices() const { return devices_; }

  /// None when the device is no disk with a medium of its own.
  [[nodiscard]] std::optional<DiskFacts> factsOf(const BlockDevice& device) const {
    if (!devices_.isWhole(device) || !device.slaves.empty()) return std::nullopt;
    if (isNoDisk(device.folder.filename().native())) return std::nullopt;
    DiskFacts facts = sysDiskFacts(roots_.sys, device.folder);
    const bool isUnusedLoop = facts.identifier.starts_with("loop") && !facts.isDiskImage;
    if (facts.sizeBytes == 0 || isUnusedLoop) return std::nullopt;
    facts.isSystemDisk = systemDisks_.contains(&device);
    // Whatever its connection: nobody unplugs the disk the system runs from.
    if (facts.isSystemDisk) facts.isInternal = true;
    std::set<const BlockDevice*> named;
    addVolumeNames(device, named, facts.volumeNames);
    return facts;
  }

 private:
  static bool isSystemMount(std::string_view point) {
    constexpr std::array<std::string_view, 5> kPoints = {"/", "/usr", "/home", "/boot",
                                                         "/boot/efi"};
    return std::find(kPoints.begin(), kPoints.end(), point) != kPoints.end();
  }

  static bool isNoDisk(std::string_view name) {
    // Arrays and mappings that have lost all they were made of show it by their names only.
    constexpr std::array<std::string_view, 5> kKinds = {"dm-", "md", "ram", "sr", "zram"};
    return std::any_of(kKinds.begin(), kKinds.end(),
                       [&](std::string_view kind) { return name.starts_with(kind); });
  }

  // The label of a device that others are made of is that of the container. So it counts only when
  // nothing in it has a name. A device that is made of several parts of a disk counts once.
  void addVolumeNames(const BlockDevice& device, std::set<const BlockDevice*>& named,
                      std::vector<std::string>& names) const {
    if (!named.insert(&device).second) return;
    const std::size_t before = names.size();
    for (const BlockDevice* above : devices_.on(device)) addVolumeNames(*above, named, names);
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
  BlockDevices devices_;
  std::map<const BlockDevice*, Path> mountPoints_;
  std::set<const BlockDevice*> systemDisks_;
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
