#include "DiskServices/DiskEjector.h"
#include "tests/DiskServices/MockService.h"

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

namespace DiskServices::Testing {
namespace {

using PlatformKit::Testing::readFile;
using PlatformKit::Testing::writeFile;
using Answer = PlatformKit::Ejector::Answer;

constexpr const char* kUDisksError = "org.freedesktop.UDisks2.Error.";
constexpr const char* kBusError = "org.freedesktop.DBus.Error.";

class DiskEjectorOnABus : public MockService {
 protected:
  // The calls in `log_` are those of this one.
  Answer eject(const std::string& disk) {
    writeFile(log_, "");
    const auto before = openDescriptors();
    const Answer answer = ejector_.ejectDisk(disk);
    EXPECT_EQ(openDescriptors(), before) << disk;
    return answer;
  }

  DiskEjector ejector_;
};

TEST_F(DiskEjectorOnABus, EjectsElseSwitchesOffElseOnlyUnmounts) {
  const struct {
    std::string drives;
    std::string calls;
  } kCases[] = {
      {R"("Slot": {"ejectable": true, "canPowerOff": true})", "Slot.Eject\n"},
      {R"("Slot": {"ejectable": false, "canPowerOff": true})", "Slot.PowerOff\n"},
      {R"("Slot": {"ejectable": false, "canPowerOff": false})", ""},
      // A second drive in the same case, and one that only has no siblings either.
      {R"("Slot": {"ejectable": false, "canPowerOff": true, "sibling": "case"},
          "Other": {"ejectable": false, "canPowerOff": true, "sibling": "case"})",
       ""},
      {R"("Slot": {"ejectable": false, "canPowerOff": true},
          "Other": {"ejectable": true, "canPowerOff": true})",
       "Slot.PowerOff\n"},
  };
  startService("");
  if (IsSkipped() || HasFatalFailure()) return;
  for (const auto& [drives, calls] : kCases) {
    know(R"("sdb": {"drive": "Slot"}, "sdb1": {"table": "sdb", "mounts": ["/a"]},
            "sdc": {"drive": "Other", "mounts": ["/b"]}, )" +
         drives);
    EXPECT_EQ(eject("sdb"), Answer::ejected) << drives;
    EXPECT_EQ(readFile(log_), "sdb1.Unmount\n" + calls) << drives;
  }
  know(R"("loop0": {"mounts": ["/a"]})");
  EXPECT_EQ(eject("loop0"), Answer::ejected) << "a disk image has no drive";
}

TEST_F(DiskEjectorOnABus, EverythingIsUnmountedAndLockedBeforeItIsEjected) {
  startService(R"("sdb": {"drive": "Reader"},
                  "sdb1": {"table": "sdb", "mounts": ["/a", "/b"], "raced": true},
                  "sdb2": {"table": "sdb"}, "dm0": {"encrypted": "sdb2", "mounts": ["/c"]},
                  "sdc": {"mounts": ["/d"]}, "dm1": {"encrypted": "sdc"},
                  "Reader": {"ejectable": true})");
  if (IsSkipped() || HasFatalFailure()) return;
  EXPECT_EQ(eject("sdb"), Answer::ejected);
  EXPECT_EQ(calls(), (std::multiset<std::string>{"sdb1.Unmount", "sdb1.Unmount", "dm0.Unmount",
                                                 "sdb2.Lock", "Reader.Eject"}));
  EXPECT_TRUE(readFile(log_).ends_with("sdb2.Lock\nReader.Eject\n")) << readFile(log_);
}

TEST_F(DiskEjectorOnABus, TellsWhyTheDiskStaysMountedAndDoesNotEjectIt) {
  startService("");
  if (IsSkipped() || HasFatalFailure()) return;
  const auto expect = [&](const std::string& volume, Answer answer) {
    know(R"("sdb": {"drive": "Reader"}, "sdb1": {"table": "sdb", "mounts": ["/a"], )" + volume +
         R"(}, "Reader": {"ejectable": true})");
    EXPECT_EQ(eject("sdb"), answer) << volume;
    EXPECT_FALSE(calls().contains("Reader.Eject")) << volume;
  };
  for (const auto& [error, answer] :
       {std::pair("DeviceBusy", Answer::busy), std::pair("AlreadyUnmounting", Answer::busy),
        std::pair("NotAuthorized", Answer::declined),
        std::pair("NotAuthorizedDismissed", Answer::declined),
        std::pair("NotAuthorizedCanObtain", Answer::declined), std::pair("Failed", Answer::failed),
        std::pair("NotSupported", Answer::failed)}) {
    expect("\"error\": \"" + std::string(kUDisksError) + error + "\"", answer);
  }
  expect("\"error\": \"" + std::string(kBusError) + "UnknownObject\"", Answer::unavailable);
  expect("\"remount\": true", Answer::busy);
  know(R"("sdb": {}, "sdb1": {"table": "sdb"})");
  EXPECT_EQ(eject("sdc"), Answer::unavailable);
  EXPECT_EQ(eject(""), Answer::unavailable);
}

TEST_F(DiskEjectorOnABus, WhatIsUnmountedIsSafeWhateverTheDriveAnswers) {
  startService("");
  if (IsSkipped() || HasFatalFailure()) return;
  for (const auto& [error, answer] :
       {std::pair(std::string(kUDisksError) + "NotSupported", Answer::ejected),
        std::pair(std::string(kBusError) + "UnknownObject", Answer::ejected),
        std::pair(std::string(kUDisksError) + "Failed", Answer::unmountedOnly),
        std::pair(std::string(kUDisksError) + "NotAuthorizedDismissed", Answer::unmountedOnly),
        std::pair(std::string(kBusError) + "NoReply", Answer::unmountedOnly),
        std::pair(std::string(kUDisksError) + "DeviceBusy", Answer::busy)}) {
    know(R"("sdb": {"drive": "Reader", "mounts": ["/a"]},
            "Reader": {"ejectable": true, "error": ")" +
         error + "\"}");
    EXPECT_EQ(eject("sdb"), answer) << error;
    EXPECT_EQ(readFile(log_), "sdb.Unmount\nReader.Eject\n") << error;
  }
  know(R"("sdb": {"drive": "Reader", "mounts": ["/a"], "taken": true},)"
       R"("Reader": {"ejectable": true})");
  EXPECT_EQ(eject("sdb"), Answer::ejected) << "taken out at once";
  EXPECT_EQ(readFile(log_), "sdb.Unmount\n");
}

TEST_F(DiskEjectorOnABus, WaitsForSlowDisksAndDoesNotWaitWithoutAService) {
  EXPECT_EQ(eject("sdb"), Answer::unavailable);
  startService(R"("sdb": {"drive": "Disk", "mounts": ["/a"], "delay": 1.2},
                  "Disk": {"ejectable": false, "canPowerOff": true, "delay": 1.2})");
  if (IsSkipped() || HasFatalFailure()) return;
  // The bus library's usual limit, lowered so that the disk takes longer than that.
  setenv("SYSTEMD_BUS_TIMEOUT", "1s", 1);  // NOLINT(concurrency-mt-unsafe): one thread
  EXPECT_EQ(eject("sdb"), Answer::ejected);
  unsetenv("SYSTEMD_BUS_TIMEOUT");  // NOLINT(concurrency-mt-unsafe): one thread
  EXPECT_EQ(readFile(log_), "sdb.Unmount\nDisk.PowerOff\n");
  bus_.reset();
  EXPECT_EQ(eject("sdb"), Answer::unavailable);
}

}  // namespace
}  // namespace DiskServices::Testing
