#include "PlatformKit/Linux/LinuxMountedVolumes.h"

#include "PlatformKit/Linux/BlockVolumes.h"
#include "PlatformKit/Linux/MountedDevices.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <utility>

#include <sys/statvfs.h>

namespace PlatformKit {
namespace {

template <std::size_t size>
bool isOneOf(const std::array<std::string_view, size>& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

bool isFuse(const Mount& mount) {
  return mount.fileSystem == "fuse" || mount.fileSystem.starts_with("fuse.");
}

bool isNetwork(const Mount& mount) {
  constexpr std::array<std::string_view, 19> kKernel = {
      "nfs",  "nfs4",     "cifs",   "smb3",   "smbfs",  "9p",       "ceph",
      "afs",  "coda",     "davfs",  "lustre", "beegfs", "orangefs", "glusterfs",
      "gpfs", "virtiofs", "vboxsf", "vmhgfs", "ncpfs"};
  constexpr std::array<std::string_view, 15> kFuse = {
      "fuse.sshfs",     "fuse.rclone",    "fuse.davfs",       "fuse.davfs2",  "fuse.glusterfs",
      "fuse.ceph-fuse", "fuse.curlftpfs", "fuse.s3fs",        "fuse.goofys",  "fuse.gcsfuse",
      "fuse.mount-s3",  "fuse.smbnetfs",  "fuse.vmhgfs-fuse", "fuse.juicefs", "fuse.seaweedfs"};
  if (isOneOf(kKernel, mount.fileSystem) || isOneOf(kFuse, mount.fileSystem)) return true;
  // Those of WebDAV have no kind, but the address as their source.
  return isFuse(mount) && mount.source.find("://") != std::string::npos;
}

// Most of these have no device either, but any of them may name one as its source.
bool isWithoutMedium(const Mount& mount) {
  constexpr std::array<std::string_view, 9> kFileSystems = {
      "squashfs", "overlay", "aufs", "tmpfs", "ramfs", "devtmpfs", "proc", "sysfs", "autofs"};
  return isOneOf(kFileSystems, mount.fileSystem);
}

bool isPlaceOfTheSystem(const Path& point) {
  constexpr std::array<std::string_view, 3> kFolders = {"boot", "snap", "var"};
  const Path below = point.relative_path();
  return !below.empty() && isOneOf(kFolders, below.begin()->native());
}

// Of several mounts of one volume, the one that people know it by: least is best.
int rankOf(const Mount& mount) {
  if (mount.point == "/") return 0;
  return mount.root == "/" ? 1 : 2;
}

/// The volumes of one moment.
class Moment {
 public:
  explicit Moment(const LinuxMountedVolumes::Roots& roots)
      : roots_(roots), mounted_(roots.mountInfo, roots.sys) {}

  [[nodiscard]] const std::vector<Mount>& mounts() const { return mounted_.mounts(); }

  /// The mounts to list, in order.
  [[nodiscard]] std::vector<const Mount*> known() const {
    std::map<Path, const Mount*> visible;  // a later mount hides the one before it in its place
    for (const Mount& mount : mounts()) visible[mount.point] = &mount;
    std::map<Identity, const Mount*> chosen;
    for (const Mount& mount : mounts()) {
      if (visible.at(mount.point) != &mount) continue;
      const auto identity = identityOf(mount);
      if (!identity) continue;
      const Mount*& place = chosen.try_emplace(*identity, &mount).first->second;
      if (rankOf(mount) < rankOf(*place)) place = &mount;
    }
    std::vector<const Mount*> known;
    known.reserve(chosen.size());
    for (const auto& entry : chosen) known.push_back(entry.second);
    std::sort(known.begin(), known.end());  // all of one array
    return known;
  }

  [[nodiscard]] MountedVolume volumeOf(const Mount& mount) const {
    MountedVolume volume;
    volume.root = mount.point;
    volume.name = (mount.point == "/" ? mount.point : mount.point.filename()).native();
    volume.isRootFileSystem = mount.point == "/";
    volume.isReadOnly = mount.isReadOnly;
    volume.isNetwork = isNetwork(mount);
    if (volume.isNetwork) return volume;
    volume.device = blockDeviceOf(mount);
    if (!volume.device) {
      // Memory, or a file system that does not name its devices. What lies behind one that is a
      // program is not known.
      volume.isInternal = !isFuse(mount);
      return volume;
    }
    if (auto label = volumeLabel(roots_.udevData, *volume.device)) volume.name = *label;
    addFactsOfDisks(mount, volume);
    return volume;
  }

 private:
  // Shares of one server can have one number, so these are told apart by their folder, too.
  using Identity = std::pair<DeviceNumber, std::string>;

  /// None for what is not listed.
  [[nodiscard]] std::optional<Identity> identityOf(const Mount& mount) const {
    if (isPlaceOfTheSystem(mount.point)) return std::nullopt;
    if (isNetwork(mount)) return Identity{mount.device, mount.root};
    if (isWithoutMedium(mount)) return std::nullopt;
    const BlockDevice* device = mounted_.under(mount);
    if (device == nullptr || disksUnder(*device).empty()) return std::nullopt;
    return Identity{device->number, std::string()};
  }

  [[nodiscard]] std::vector<const BlockDevice*> disksUnder(const BlockDevice& device) const {
    auto disks = mounted_.devices().bearersOf(device);
    std::erase_if(disks, [](const BlockDevice* disk) { return hasNoMedium(*disk); });
    return disks;
  }

  void addFactsOfDisks(const Mount& mount, MountedVolume& volume) const {
    const BlockDevice* device = mounted_.under(mount);
    if (device == nullptr) return;
    std::vector<DiskFacts> disks;
    for (const auto* disk : disksUnder(*device)) disks.push_back(mounted_.factsOf(*disk));
    if (disks.empty()) return;
    const auto all = [&](bool DiskFacts::*fact) {
      return std::all_of(disks.begin(), disks.end(),
                         [&](const DiskFacts& disk) { return disk.*fact; });
    };
    const auto any = [&](bool DiskFacts::*fact) {
      return std::any_of(disks.begin(), disks.end(),
                         [&](const DiskFacts& disk) { return disk.*fact; });
    };
    // Nobody takes out what the system runs from.
    const bool stays = any(&DiskFacts::isSystemDisk);
    volume.isDiskImage = any(&DiskFacts::isDiskImage);
    volume.isInternal = all(&DiskFacts::isInternal);
    volume.isRemovable = !stays && all(&DiskFacts::isRemovableMedia);
    volume.isEjectable = !stays && all(&DiskFacts::isEjectable);
  }

  const LinuxMountedVolumes::Roots& roots_;
  MountedDevices mounted_;
};

}  // namespace

std::vector<MountedVolume> LinuxMountedVolumes::list() {
  const Moment now(roots_);
  std::vector<MountedVolume> volumes;
  for (const Mount* mount : now.known()) volumes.push_back(now.volumeOf(*mount));
  return volumes;
}

std::optional<MountedVolume> LinuxMountedVolumes::holding(const Path& existing) {
  std::error_code unresolvable;
  const Path path = std::filesystem::canonical(existing, unresolvable);
  if (unresolvable) return std::nullopt;
  const Moment now(roots_);
  const Mount* mount = mountHolding(now.mounts(), path);
  if (mount == nullptr) return std::nullopt;
  return now.volumeOf(*mount);
}

std::optional<VolumeSpace> LinuxMountedVolumes::space(const Path& root) {
  // What was unmounted leaves a folder, whose sizes are those of another volume.
  const auto mounts = readMounts(roots_.mountInfo);
  const bool isMounted = std::any_of(mounts.begin(), mounts.end(),
                                     [&](const Mount& mount) { return mount.point == root; });
  struct statvfs sizes {};
  if (!isMounted || statvfs(root.c_str(), &sizes) != 0) return std::nullopt;
  return VolumeSpace{sizes.f_blocks * sizes.f_frsize, sizes.f_bavail * sizes.f_frsize};
}

}  // namespace PlatformKit
