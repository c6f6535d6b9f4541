#include "DiskServices/UDisks.h"
#include "tests/DiskServices/MockService.h"

#include <cstdlib>
#include <set>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace DiskServices::Testing {
namespace {

using PlatformKit::Path;
using PlatformKit::Testing::pattern;
using PlatformKit::Testing::readFile;
using PlatformKit::Testing::writeFile;

class UDisksOnABus : public MockService {
 protected:
  Kind open(const Path& device) {
    const auto before = openDescriptors();
    const Kind kind = disks_.openReadOnly(device).kind;
    EXPECT_EQ(openDescriptors(), before) << device;
    return kind;
  }

  bool unmount(const std::string& disk) {
    const auto before = openDescriptors();
    const bool unmounted = disks_.unmountDisk(disk);
    EXPECT_EQ(openDescriptors(), before) << disk;
    return unmounted;
  }

  UDisks disks_;
};

TEST_F(UDisksOnABus, HandsOverAReadOnlyDescriptorHoweverLongThatTakes) {
  if (geteuid() != 0) GTEST_SKIP() << "Only the administrator can make block devices.";
  writeFile(folder_.path() / "image", pattern(4096));
  writeFile(folder_.path() / "other", pattern(4096));
  const LoopDevice device(folder_.path() / "image");
  const LoopDevice other(folder_.path() / "other");
  const std::string block = "\"" + device.name() + "\": {\"open\": \"";
  startService(block + device.path().native() + "\", \"delay\": 1.3}");
  if (IsSkipped() || HasFatalFailure()) return;
  // The bus library's usual limit, lowered so that the prompt stays open longer than that.
  setenv("SYSTEMD_BUS_TIMEOUT", "1s", 1);  // NOLINT(concurrency-mt-unsafe): one thread
  const auto before = openDescriptors();
  {
    const auto answer = disks_.openReadOnly(device.path());
    ASSERT_EQ(answer.kind, Kind::opened);
    std::string bytes(4096, '\0');
    EXPECT_EQ(pread(answer.descriptor.get(), bytes.data(), bytes.size(), 0), 4096);
    EXPECT_EQ(bytes, pattern(4096));
    EXPECT_EQ(fcntl(answer.descriptor.get(), F_GETFL) & O_ACCMODE, O_RDONLY);
    EXPECT_NE(fcntl(answer.descriptor.get(), F_GETFD) & FD_CLOEXEC, 0);
  }
  EXPECT_EQ(openDescriptors(), before);
  EXPECT_EQ(readFile(log_), device.name() + ".OpenDevice r True\n");
  unsetenv("SYSTEMD_BUS_TIMEOUT");  // NOLINT(concurrency-mt-unsafe): one thread

  know(block + device.path().native() + "\", \"writable\": true}");
  EXPECT_EQ(open(device.path()), Kind::unavailable);
  for (const Path& wrong : {other.path(), Path("/dev/null"), folder_.path() / "image"}) {
    know(block + wrong.native() + "\"}");
    EXPECT_EQ(open(device.path()), Kind::unavailable) << wrong;
  }
}

TEST_F(UDisksOnABus, TellsARefusalFromAServiceThatCannotHelp) {
  startService("\"sdb\": {}");
  if (IsSkipped() || HasFatalFailure()) return;
  EXPECT_EQ(open("/dev/sdc"), Kind::unavailable);
  EXPECT_EQ(open("sdb"), Kind::unavailable);
  EXPECT_EQ(open(""), Kind::unavailable);
  EXPECT_EQ(readFile(log_), "");
  for (const auto& [error, kind] :
       {std::pair("org.freedesktop.UDisks2.Error.NotAuthorizedDismissed", Kind::declined),
        std::pair("org.freedesktop.UDisks2.Error.NotAuthorized", Kind::declined),
        std::pair("org.freedesktop.UDisks2.Error.NotAuthorizedCanObtain", Kind::unavailable),
        std::pair("org.freedesktop.UDisks2.Error.Failed", Kind::unavailable)}) {
    know("\"sdb\": {\"error\": \"" + std::string(error) + "\"}");
    EXPECT_EQ(open("/dev/sdb"), kind) << error;
  }
  know("\"sdb\": {\"exit\": true}");
  EXPECT_EQ(open("/dev/sdb"), Kind::unavailable) << "it died while it was asked";
}

TEST_F(UDisksOnABus, WithoutServiceOrBusNothingIsOpenedOrUnmounted) {
  EXPECT_EQ(open("/dev/sdb"), Kind::unavailable);
  EXPECT_FALSE(unmount("sdb"));
  bus_.reset();
  for (const char* address : {"unix:path=/nowhere/bus", "nonsense", "unix:path=/dev/null"}) {
    setenv("DBUS_SYSTEM_BUS_ADDRESS", address, 1);  // NOLINT(concurrency-mt-unsafe): one thread
    EXPECT_EQ(open("/dev/sdb"), Kind::unavailable);
    EXPECT_FALSE(unmount("sdb"));
  }
  unsetenv("DBUS_SYSTEM_BUS_ADDRESS");  // NOLINT(concurrency-mt-unsafe): one thread
}

TEST_F(UDisksOnABus, UnmountsAllOfTheDiskAndNothingElse) {
  startService(R"("sdb": {"drive": "Reader", "mounts": []},
                  "sdb1": {"table": "sdb", "mounts": ["/media/a", "/media/b"]},
                  "sdb2": {"drive": "Reader", "table": "sdb"},
                  "dm0": {"encrypted": "sdb2", "mounts": ["/media/c"]},
                  "dm1": {"encrypted": "dm2", "mounts": ["/media/d"]},
                  "dm2": {"encrypted": "dm1"},
                  "sdbboot": {"drive": "Reader", "mounts": ["/media/e"]},
                  "sdc": {"drive": "Other", "mounts": ["/media/f"]},
                  "sdbb1": {"table": "sdbb", "mounts": ["/media/g"]},
                  "loop0": {"mounts": ["/media/h"]}, "loop1": {})");
  if (IsSkipped() || HasFatalFailure()) return;
  EXPECT_TRUE(unmount("loop1"));
  EXPECT_FALSE(unmount("sdx"));
  EXPECT_EQ(readFile(log_), "");
  EXPECT_TRUE(unmount("sdb"));
  EXPECT_EQ(calls(), (std::multiset<std::string>{"dm0.Unmount", "sdb1.Unmount", "sdb1.Unmount",
                                                 "sdbboot.Unmount"}));
}

TEST_F(UDisksOnABus, ADiskThatStaysMountedIsNotCalledUnmounted) {
  const std::string twoVolumes = R"("sdb": {}, "sdb1": {"table": "sdb", "mounts": ["/a"], "error":
      "org.freedesktop.UDisks2.Error.DeviceBusy"}, "sdb2": {"table": "sdb", "mounts": ["/b"],
      "error": "org.freedesktop.UDisks2.Error.NotAuthorizedDismissed"})";
  startService(twoVolumes);
  if (IsSkipped() || HasFatalFailure()) return;
  EXPECT_FALSE(unmount("sdb"));
  const std::string calls = readFile(log_);
  EXPECT_TRUE(calls == "sdb1.Unmount\n" || calls == "sdb2.Unmount\n")
      << "after a refusal nobody is asked again: " << calls;
  know(R"("sdb": {"mounts": ["/a"], "remount": true})");
  EXPECT_FALSE(unmount("sdb"));
}

}  // namespace
}  // namespace DiskServices::Testing
