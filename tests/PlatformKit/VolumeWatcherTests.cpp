#include "PlatformKit/Linux/DeviceEvents.h"
#include "PlatformKit/Linux/LinuxVolumeWatcher.h"
#include "tests/PlatformKit/MountedImage.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <unistd.h>

namespace PlatformKit::Testing {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

constexpr const char* kThisThreadsMounts = "/proc/thread-self/mountinfo";

std::string kernelMessage(const std::string& subsystem) {
  return "change@/devices/virtual/block/loop0\0ACTION=change\0SUBSYSTEM="s + subsystem +
         "\0SEQNUM=1\0"s;
}

std::string udevMessage(const std::string& properties, std::uint32_t offset, std::uint32_t length) {
  std::string header = "libudev\0\xFE\xED\xCA\xFE"s;
  for (const std::uint32_t number : {40U, offset, length, 0U, 0U, 0U, 0U}) {
    std::string bytes(sizeof number, '\0');
    std::memcpy(bytes.data(), &number, sizeof number);
    header += bytes;
  }
  return header + properties;
}

TEST(DeviceEvents, OnlyThoseOfBlockDevicesMatter) {
  EXPECT_TRUE(isBlockDeviceEvent(kernelMessage("block")));
  for (const char* other : {"net", "blockade", "xblock", "", "block "}) {
    EXPECT_FALSE(isBlockDeviceEvent(kernelMessage(other))) << other;
  }
  EXPECT_FALSE(isBlockDeviceEvent("add@/x\0XSUBSYSTEM=block\0"s));
  const std::string properties = "ACTION=add\0SUBSYSTEM=block\0ID_FS_LABEL=X\0"s;
  const auto size = static_cast<std::uint32_t>(properties.size());
  EXPECT_TRUE(isBlockDeviceEvent(udevMessage(properties, 40, size)));
  EXPECT_FALSE(isBlockDeviceEvent(udevMessage("SUBSYSTEM=usb\0"s, 40, 14)));
}

TEST(DeviceEvents, MessagesOfAnotherFormAreNone) {
  for (const std::string& text :
       {""s, "\0"s, "@"s, "SUBSYSTEM=block"s, "\0SUBSYSTEM=block\0"s, "add\0SUBSYSTEM=block\0"s,
        "libudev"s, "libudev\0"s, "add@/x SUBSYSTEM=block"s}) {
    EXPECT_FALSE(isBlockDeviceEvent(text)) << text;
  }
  const std::string properties = "SUBSYSTEM=block\0"s;
  const std::string whole = udevMessage(properties, 40, 16);
  ASSERT_TRUE(isBlockDeviceEvent(whole));
  for (std::size_t size = 0; size < whole.size(); ++size) {
    // In memory of just that size, so that the sanitizers see a step too far.
    const std::string cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_FALSE(isBlockDeviceEvent(cut)) << size;
  }
  constexpr std::uint32_t kMost = 0xFFFFFFFF;
  EXPECT_FALSE(isBlockDeviceEvent(udevMessage(properties, 41, 16)));
  EXPECT_FALSE(isBlockDeviceEvent(udevMessage(properties, kMost, 16)));
  EXPECT_FALSE(isBlockDeviceEvent(udevMessage(properties, 40, kMost)));
  EXPECT_FALSE(isBlockDeviceEvent(udevMessage(properties, kMost, kMost)));
  std::string otherMagic = whole;
  otherMagic[8] = 0;
  EXPECT_FALSE(isBlockDeviceEvent(otherMagic));
}

/// Counts the calls of a watcher.
class Calls {
 public:
  // Holds the caller up until `release`.
  void hold() { isHeld_ = true; }
  void release() {
    {
      const std::lock_guard lock(mutex_);
      isHeld_ = false;
    }
    changed_.notify_all();
  }

  void operator()() {
    std::unique_lock lock(mutex_);
    ++count_;
    changed_.notify_all();
    changed_.wait(lock, [this] { return !isHeld_; });
  }

  // The calls so far.
  [[nodiscard]] int count() {
    const std::lock_guard lock(mutex_);
    return count_;
  }

  // Waits for another call than those.
  [[nodiscard]] bool comesAfter(int before) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, 20s, [&] { return count_ > before; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  int count_ = 0;
  bool isHeld_ = false;
};

TEST(LinuxVolumeWatcher, TellsOfEachMountAndUnmountAndOfWhatHappensDuringACall) {
  if (geteuid() != 0) GTEST_SKIP() << "only root may mount";
  const TempFolder temp;
  bool isAlone = false;
  std::thread([&] {
    isAlone = leaveTheMountsOfOthers();
    if (!isAlone) return;
    const std::string point = temp.path();
    Calls calls;
    {
      LinuxVolumeWatcher watcher(kThisThreadsMounts);
      watcher.start([&] { calls(); });
      EXPECT_EQ(::mount("none", point.c_str(), "tmpfs", 0, nullptr), 0);
      EXPECT_TRUE(calls.comesAfter(0)) << "mount";
      int before = calls.count();
      calls.hold();
      EXPECT_EQ(umount(point.c_str()), 0);
      EXPECT_TRUE(calls.comesAfter(before)) << "unmount";
      before = calls.count();
      EXPECT_EQ(::mount("none", point.c_str(), "tmpfs", 0, nullptr), 0);
      calls.release();
      EXPECT_TRUE(calls.comesAfter(before)) << "during a call";
    }
    const int last = calls.count();
    EXPECT_EQ(umount(point.c_str()), 0);
    EXPECT_EQ(calls.count(), last);
  }).join();
  if (!isAlone) GTEST_SKIP() << "this machine gives out no mounts of one's own";
}

TEST(LinuxVolumeWatcher, TellsOfADeviceThatIsTakenAway) {
  if (geteuid() != 0) GTEST_SKIP() << "only root may attach an image";
  const TempFolder temp;
  writeFile(temp.path() / "image", pattern(1U << 20U));
  const std::string loop = (temp.path() / "loop").native();
  if (!succeeds("losetup -f --show '" + (temp.path() / "image").native() + "' >'" + loop + "'")) {
    GTEST_SKIP() << "this machine cannot attach an image";
  }
  Calls calls;
  LinuxVolumeWatcher watcher("/no/list/of/mounts");
  watcher.start([&] { calls(); });
  EXPECT_TRUE(succeeds("losetup -d \"$(cat '" + loop + "')\""));
  EXPECT_TRUE(calls.comesAfter(0));
}

TEST(LinuxVolumeWatcher, EndsAtOnceWithoutAnEventAndWithoutAStart) {
  const LinuxVolumeWatcher unused;
  LinuxVolumeWatcher idle;
  idle.start([] {});
  LinuxVolumeWatcher onAFile("/etc/hostname");
  onAFile.start([] {});
}

}  // namespace
}  // namespace PlatformKit::Testing
