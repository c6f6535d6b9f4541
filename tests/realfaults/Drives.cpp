#include "tests/realfaults/Drives.h"

#include "tests/PlatformKit/MountedImage.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace RealFaults {
namespace {

using EndToEnd::Program;
using PlatformKit::Testing::succeeds;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

const char* const kConnections = "/sys/fs/fuse/connections";

const Program::Setting& setting() {
  static const Program::Setting kSetting{"/",
                                         {"LANG=C.UTF-8", "PATH=/usr/sbin:/usr/bin:/sbin:/bin"}};
  return kSetting;
}

// The smallest that mkfs makes; the images have holes.
const char* sizeOf(const std::string& type) {
  if (type == "xfs") return "320M";
  if (type == "btrfs") return "128M";
  return "96M";
}

std::string maker(const std::string& type) {
  if (type == "ext4") return "mkfs.ext4 -q -F -b 4096 ";
  if (type == "ntfs") return "mkfs.ntfs -q -Q -F ";
  return "mkfs." + type + " ";
}

// In user space, the name of the program that is the file system.
std::string mounter(const std::string& type) {
  if (type == "exfat") return "mount.exfat-fuse ";
  if (type == "ntfs") return "ntfs-3g ";
  return "mount -t " + type + " ";
}

}  // namespace

std::optional<std::string> whyNoDrives() {
  if (geteuid() != 0) return "Only the administrator can make and mount drives.";
  static const bool isAlone = PlatformKit::Testing::leaveTheMountsOfOthers();
  if (!isAlone) return "Needs the right to mount.";
  return std::nullopt;
}

std::optional<std::string> whyNoFaults() {
  if (auto why = whyNoDrives()) return why;
  if (std::string(ZEPHRIMARK_FAULT_FS).empty()) return "Built without libfuse3.";
  if (access("/dev/fuse", R_OK | W_OK) != 0) return "Needs /dev/fuse.";
  if (!fs::exists(kConnections) || fs::is_empty(kConnections)) {
    static_cast<void>(succeeds(std::string("mount -t fusectl none ") + kConnections));
  }
  return std::nullopt;
}

std::string mustRun(const std::string& command) {
  EndToEnd::End end = Program({"sh", "-ec", command}, setting()).waitForEnd();
  if (end.status != 0) throw std::runtime_error(command + ": " + end.error);
  if (end.output.ends_with('\n')) end.output.pop_back();
  return end.output;
}

FaultyFolder::FaultyFolder(const Path& point, const std::string& rules) : point_(point) {
  fs::create_directories(point_);
  fs::create_directories(backing());
  process_ = std::make_unique<Program>(
      std::vector<std::string>{ZEPHRIMARK_FAULT_FS, backing(), point_}, setting());
  process_->readUntil([](const std::string& output) { return output == "ready\n"; });
  struct stat status {};
  if (stat(point_.c_str(), &status) != 0) throw std::runtime_error("FaultFs does not answer");
  connection_ = minor(status.st_dev);
  setRules(rules);
}

FaultyFolder::~FaultyFolder() {
  // Whether it is still mounted or not: its process ends with this object.
  static_cast<void>(umount2(point_.c_str(), MNT_DETACH));
}

void FaultyFolder::setRules(const std::string& rules) const {
  std::ofstream control(point_ / ".faults");
  // An empty write would not get through.
  control << (rules.empty() ? std::string("none") : rules) << std::flush;
  if (!control) throw std::runtime_error("FaultFs does not know the rules " + rules);
}

std::int64_t FaultyFolder::concerned() const {
  std::ifstream control(point_ / ".faults");
  std::int64_t count = 0;
  if (!(control >> count)) throw std::runtime_error("FaultFs does not answer");
  return count;
}

void FaultyFolder::waitForIt() const {
  for (int i = 0; i < 3000 && concerned() == 0; ++i) std::this_thread::sleep_for(10ms);
  if (concerned() == 0) throw std::runtime_error("The call never came");
}

void FaultyFolder::abort() const {
  mustRun("echo 1 >" + std::string(kConnections) + "/" + std::to_string(connection_) + "/abort");
}

std::optional<std::string> Disk::whyNone(const std::string& type) {
  if (auto why = whyNoDrives()) return why;
  if (!succeeds("losetup -f")) return "Needs loop devices.";
  if (!succeeds("command -v mkfs." + type)) return "Needs mkfs." + type + ".";
  const std::string mount = mounter(type);
  if (mount.starts_with("mount ")) {
    if (succeeds("grep -qw " + type + " /proc/filesystems || modprobe " + type))
      return std::nullopt;
    return "The kernel does not know " + type + ".";
  }
  if (!succeeds("command -v " + mount)) return "Needs " + mount + "for " + type + ".";
  if (access("/dev/fuse", R_OK | W_OK) != 0) return "Needs /dev/fuse.";
  return std::nullopt;
}

Disk::Disk(const Path& image, const Path& point, const std::string& type)
    : image_(image), point_(point) {
  fs::create_directories(point_);
  const std::string quoted = "'" + image_.native() + "'";
  if (!fs::exists(image_)) mustRun(std::string("truncate -s ") + sizeOf(type) + " " + quoted);
  // Made on the image, so that no cache of the device knows anything of it yet.
  mustRun(maker(type) + quoted);
  device_ = mustRun("losetup -f --show --direct-io=on " + quoted);
  mustRun(mounter(type) + device_ + " '" + point_.native() + "'");
}

Disk::~Disk() {
  // A disk that was taken away may have no answer left for either; nothing else depends on them.
  static_cast<void>(umount2(point_.c_str(), MNT_DETACH));
  static_cast<void>(succeeds("losetup -d " + device_));
}

}  // namespace RealFaults
