// What a read-back finds on real file systems when a bit of the medium changes behind their backs,
// between the flush and the read-back, while the copy is in memory.
#include "OffloadKit/OffloadEngine.h"
#include "PlatformKit/Linux/LinuxFileSystem.h"
#include "PlatformKit/Linux/LinuxVolumes.h"
#include "PlatformKit/Posix/UniqueFd.h"
#include "PlatformKit/Testing/FakeRawDevices.h"
#include "PlatformKit/Testing/FaultyFileSystem.h"
#include "PlatformKit/Testing/TempFolder.h"
#include "tests/realfaults/Drives.h"

#include <array>
#include <cerrno>
#include <filesystem>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace RealFaults {
namespace {

using PlatformKit::UniqueFd;
using PlatformKit::Testing::Call;
using PlatformKit::Testing::CallInfo;
using PlatformKit::Testing::FaultyFileSystem;
using PlatformKit::Testing::Intervention;
using PlatformKit::Testing::pattern;

constexpr off_t kPage = 4096;
constexpr const char* kDiffers = "The copy didn't match the original";
constexpr const char* kNotRead = "The copy couldn't be read back";
constexpr const char* kVerified = "";

class ReadBack : public testing::Test {
 protected:
  ReadBack() { PlatformKit::Testing::writeFile(card_ / kName, content_); }

  void SetUp() override {
    if (const auto why = whyNoDrives()) GTEST_SKIP() << *why;
  }

  // Runs the offload to the drive; once the copy is flushed and before it is read back a bit of it
  // changes in `medium`. Answers the reason why the copy is not verified, empty when it is.
  std::string outcome(const Path& drive, const Path& medium) {
    PlatformKit::LinuxFileSystem linux;
    FaultyFileSystem watched(linux);
    bool flipped = false;
    watched.setScript([&](const CallInfo& call) {
      const bool isCopy = call.path.filename() == "." + std::string(kName) + ".zmpart";
      if (call.call == Call::openForReading && isCopy && !flipped) {
        flipped = true;
        flipBehind(call.path, medium);
      }
      return Intervention{};
    });
    PlatformKit::LinuxVolumes volumes;
    PlatformKit::SystemClock clock;
    PlatformKit::Testing::FakeRawDevices devices;
    const DeviceKit::RawDeviceAccess access(devices, {});
    OffloadKit::OffloadEngine engine({watched, volumes, clock}, access);
    OffloadKit::OffloadPlan plan;
    plan.source = card_;
    plan.destinations = {drive / "copies"};
    plan.chunkSize = kPage * 64;
    const auto result = engine.run(plan, [](const auto&) {});
    EXPECT_TRUE(flipped);
    const auto& outcome = result.files.at(0).outcomes.at(0);
    return outcome.isVerified() ? "" : outcome.reason()->english();
  }

  const PlatformKit::Testing::TempFolder temp_;
  std::string deviceToDrop_;  // whose cache is emptied before the read-back

 private:
  // Before and after, whoever reads through the cache sees the copy as it was written.
  void flipBehind(const Path& copy, const Path& medium) {
    const UniqueFd cached(open(copy.c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_TRUE(contentOf(cached.get()) == content_) << "was not written right";
    const UniqueFd fd(open(medium.c_str(), O_RDWR | O_CLOEXEC));
    const off_t at = placeOn(fd.get());
    ASSERT_GE(at, 0) << "the copy is not on the medium yet";
    struct stat before {};
    ASSERT_EQ(fstat(fd.get(), &before), 0);
    char byte = 0;
    ASSERT_EQ(pread(fd.get(), &byte, 1, at), 1);
    byte = static_cast<char>(byte ^ 1);
    ASSERT_EQ(pwrite(fd.get(), &byte, 1, at), 1);
    // A medium that decays does not date it, and some caches look at the date.
    const std::array<timespec, 2> dates = {before.st_atim, before.st_mtim};
    ASSERT_EQ(futimens(fd.get(), dates.data()), 0);
    EXPECT_TRUE(contentOf(cached.get()) == content_) << "the copy was not in memory";
    if (deviceToDrop_.empty()) return;
    const UniqueFd device(open(deviceToDrop_.c_str(), O_RDONLY | O_CLOEXEC));
    ASSERT_EQ(posix_fadvise(device.get(), 0, 0, POSIX_FADV_DONTNEED), 0);
  }

  [[nodiscard]] std::string contentOf(int fd) const {
    std::string bytes(content_.size(), '\0');
    if (pread(fd, bytes.data(), bytes.size(), 0) < 0) bytes.clear();
    return bytes;
  }

  // Where a page from the middle of the content lies.
  [[nodiscard]] off_t placeOn(int fd) const {
    const std::string wanted = content_.substr(100 * kPage, kPage);
    std::string page(kPage, '\0');
    for (off_t at = 0; pread(fd, page.data(), kPage, at) > 0; at += kPage) {
      if (page == wanted) return at;
    }
    return -1;
  }

  static constexpr const char* kName = "clip.mov";
  const Path card_ = temp_.path() / "card";
  const std::string content_ = pattern(1'000'000, 7);
};

TEST_F(ReadBack, ComesFromTheMediumOfADisk) {
  struct OnDisk {
    const char* type;
    const char* outcome;
  };
  // btrfs has checksums of its own and gives no wrong byte away.
  constexpr std::array<OnDisk, 3> kDisks = {
      {{"ext4", kDiffers}, {"xfs", kDiffers}, {"btrfs", kNotRead}}};
  std::string missing;
  for (const auto& [type, expected] : kDisks) {
    SCOPED_TRACE(type);
    if (const auto why = Disk::whyNone(type)) {
      missing += *why + " ";
      continue;
    }
    const Disk disk(temp_.path() / (std::string(type) + ".img"), temp_.path() / type, type);
    EXPECT_EQ(outcome(disk.point(), disk.image()), expected);
  }
  if (!missing.empty()) GTEST_SKIP() << missing;
}

// Their processes read the device through the kernel's cache, which only the administrator can
// empty.
TEST_F(ReadBack, ComesFromTheDevicesCacheForExfatAndNtfsInUserSpace) {
  for (const char* type : {"exfat", "ntfs"}) {
    SCOPED_TRACE(type);
    if (const auto why = Disk::whyNone(type)) GTEST_SKIP() << *why;
    for (const bool dropped : {false, true}) {
      SCOPED_TRACE(dropped);
      const Disk disk(temp_.path() / "disk.img", temp_.path() / "disk", type);
      deviceToDrop_ = dropped ? disk.device() : "";
      EXPECT_EQ(outcome(disk.point(), disk.image()), dropped ? kDiffers : kVerified);
    }
  }
}

TEST_F(ReadBack, ComesFromTheProcessOfAFileSystemInUserSpace) {
  if (const auto why = whyNoFaults()) GTEST_SKIP() << *why;
  const std::string refused = " error=" + std::to_string(EINVAL);
  for (const std::string& rules : {std::string(), "openDirect" + refused, "readDirect" + refused}) {
    SCOPED_TRACE(rules);
    const FaultyFolder drive(temp_.path() / "drive", rules);
    EXPECT_EQ(outcome(drive.point(), drive.backing() / "copies/.clip.mov.zmpart"), kDiffers);
    std::filesystem::remove_all(drive.backing() / "copies");
  }
}

}  // namespace
}  // namespace RealFaults
