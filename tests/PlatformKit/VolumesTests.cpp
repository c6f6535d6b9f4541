#include "PlatformKit/Linux/LinuxVolumes.h"
#include "PlatformKit/Linux/MountTable.h"
#include "PlatformKit/Testing/FakeVolumes.h"
#include "PlatformKit/Testing/VolumesContract.h"

#include <filesystem>
#include <optional>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace PlatformKit::Testing {
namespace {

LinuxVolumes realVolumes;

INSTANTIATE_TEST_SUITE_P(Subjects, VolumesContract,
                         ::testing::Values(VolumesSubject{"Linux",
                                                          []() -> std::unique_ptr<Volumes> {
                                                            return std::make_unique<LinuxVolumes>();
                                                          }},
                                           VolumesSubject{"Fake",
                                                          []() -> std::unique_ptr<Volumes> {
                                                            return std::make_unique<FakeVolumes>(
                                                                realVolumes);
                                                          }}),
                         [](const auto& subject) { return subject.param.name; });

TEST(MountTable, ReadsAndUnescapesEveryMountInOrder) {
  const auto mounts = parseMountInfo(
      "23 27 0:21 / / rw,relatime - ext4 /dev/root rw\n"
      "36 35 8:17 / /media/My\\040Card rw,noatime shared:1 master:7 - vfat /dev/disk\\040one rw\n"
      "37 35 259:12 /sub /mnt/a\\011b\\012c\\134d rw propagate_from:2 - fuse.exfat - rw\n"
      "38 35 0:44 / /mnt/\\134040\\04\\9 rw - tmpfs no-ne rw");
  ASSERT_EQ(mounts.size(), 4U);
  EXPECT_EQ(mounts[0].point, "/");
  EXPECT_EQ(mounts[0].fileSystem, "ext4");
  EXPECT_EQ(mounts[1].device, (DeviceNumber{8, 17}));
  EXPECT_EQ(mounts[1].point, "/media/My Card");
  EXPECT_EQ(mounts[1].fileSystem, "vfat");
  EXPECT_EQ(mounts[1].source, "/dev/disk one");
  EXPECT_EQ(mounts[2].device, (DeviceNumber{259, 12}));
  EXPECT_EQ(mounts[2].point, "/mnt/a\tb\nc\\d");
  EXPECT_EQ(mounts[2].source, "-");
  EXPECT_EQ(mounts[3].point, "/mnt/\\040\\04\\9");
  EXPECT_EQ(mounts[3].source, "no-ne");
}

TEST(MountTable, LeavesOutLinesOfAnotherForm) {
  for (const char* line :
       {"", " ", "-", "- - - - - - - -", "nonsense in seven words - or so", "36 35 8:17 / /mnt",
        "36 35 8:17 / /mnt rw shared:1 vfat /dev/sdb1 rw", "36 35 8 / /mnt rw - vfat /dev/sdb1 rw",
        "36 35 8: / /mnt rw - vfat /dev/sdb1 rw", "36 35 :17 / /mnt rw - vfat /dev/sdb1 rw",
        "36 35 8:17x / /mnt rw - vfat /dev/sdb1 rw",
        "36 35 8:99999999999 / /mnt rw - vfat /dev/sdb1 rw", "36 35 8:17 / /mnt rw - vfat"}) {
    const auto mounts =
        parseMountInfo("1 0 8:1 / /before rw - ext4 /dev/sda1 rw\n" + std::string(line) +
                       "\n2 0 8:2 / /after rw - ext4 /dev/sda2 rw\n");
    ASSERT_EQ(mounts.size(), 2U) << line;
    EXPECT_EQ(mounts[1].point, "/after") << line;
  }
}

TEST(MountTable, AnItemLiesOnTheDeepestMountAndOfSeveralAtOnePlaceOnTheLast) {
  std::string text;
  int number = 0;
  for (const char* point :
       {"/mnt/ab", "/", "/mnt/a/deep", "/mnt/a", "/media", "/mnt/a", "/media"}) {
    text += "1 0 8:" + std::to_string(number++) + " / " + point + " rw - ext4 /dev/sda rw\n";
  }
  const auto mounts = parseMountInfo(text);
  const auto minorHolding = [&](const char* path) {
    return mountHolding(mounts, path)->device.minor;
  };
  EXPECT_EQ(minorHolding("/"), 1U);
  EXPECT_EQ(minorHolding("/mnt"), 1U);
  EXPECT_EQ(minorHolding("/mnt/a"), 5U);
  EXPECT_EQ(minorHolding("/mnt/a/dee"), 5U);
  EXPECT_EQ(minorHolding("/mnt/a/deep/er"), 2U);
  EXPECT_EQ(minorHolding("/mnt/ab/file"), 0U);
  EXPECT_EQ(minorHolding("/mnt/abc"), 1U);
  EXPECT_EQ(minorHolding("/media/card"), 6U);
  EXPECT_EQ(mountHolding(parseMountInfo("1 0 8:1 / /mnt rw - ext4 /dev/sda rw"), "/m"), nullptr);
}

/// A machine made of files: what is mounted where, which devices it has, and what they are called.
class LinuxVolumesOfAMachine : public ::testing::Test {
 protected:
  LinuxVolumesOfAMachine() { std::filesystem::create_directories(card_ / "DCIM"); }

  void mountCard(const std::string& numbers, const std::string& source = "/dev/sdb1") {
    writeFile(roots_.mountInfo, "1 0 254:9 / / rw - ext4 /dev/root rw\n2 1 " + numbers + " / " +
                                    temp_.path().native() + "/My\\040Card rw - vfat " + source +
                                    " rw\n");
  }

  const TempFolder temp_;
  const Path card_ = temp_.path() / "My Card";
  const LinuxVolumes::Roots roots_ = {temp_.path() / "mountinfo", temp_.path() / "sys",
                                      temp_.path() / "udev"};
  LinuxVolumes volumes_{roots_};
};

TEST_F(LinuxVolumesOfAMachine, FactsTellWhereAVolumeIsMountedItsDeviceAndItsLabel) {
  mountCard("8:17");
  writeFile(roots_.udevData / "b8:1", "E:ID_FS_LABEL_ENC=Another\n");
  writeFile(roots_.udevData / "b8:17",
            "S:disk/by-label/x\nE:ID_FS_LABEL=Card_\nI:ID_FS_LABEL_ENC=no\n"
            "E:ID_FS_LABEL_ENC=Karte\\x20\\xc3\\x84\\x5cx41\\xZZ\\x4\nE:ID_FS_TYPE=vfat\n");
  std::filesystem::create_directory_symlink("My Card/DCIM", temp_.path() / "link");
  for (const Path& inside : {card_, card_ / "DCIM", temp_.path() / "link"}) {
    const VolumeFacts facts = volumes_.facts(inside);
    EXPECT_EQ(facts.root, card_);
    EXPECT_EQ(facts.device, (DeviceNumber{8, 17}));
    EXPECT_EQ(facts.name, "Karte \u00C4\\x41\\xZZ\\x4");
  }
  EXPECT_EQ(volumes_.facts(temp_.path()).root, "/");
  EXPECT_EQ(volumes_.facts(temp_.path()).device, (DeviceNumber{254, 9}));
}

TEST_F(LinuxVolumesOfAMachine, AVolumeWithoutALabelIsCalledAsItsMountPoint) {
  mountCard("8:17");
  EXPECT_EQ(volumes_.facts(card_).name, "My Card");
  writeFile(roots_.udevData / "b8:17", "E:ID_FS_LABEL_ENC=\n");
  EXPECT_EQ(volumes_.facts(card_).name, "My Card");
  EXPECT_EQ(volumes_.facts(temp_.path()).name, std::nullopt);
}

TEST_F(LinuxVolumesOfAMachine, WithoutABlockDeviceOfItsOwnTheSourceTellsTheDevice) {
  mountCard("0:44", "tmpfs");
  EXPECT_EQ(volumes_.facts(card_).device, std::nullopt);
  EXPECT_EQ(volumes_.facts(card_).name, "My Card");
  mountCard("0:44", "/dev/null");
  EXPECT_EQ(volumes_.facts(card_).device, std::nullopt);
  for (const auto& item : std::filesystem::directory_iterator("/dev")) {
    struct stat status {};
    if (!item.is_block_file() || stat(item.path().c_str(), &status) != 0) continue;
    mountCard("0:44", item.path());
    EXPECT_EQ(volumes_.facts(card_).device,
              (DeviceNumber{major(status.st_rdev), minor(status.st_rdev)}));
    // A source that lies elsewhere may be on a volume that never answers, so nobody looks.
    std::filesystem::create_symlink(item.path(), temp_.path() / "disk");
    for (const Path& elsewhere : {temp_.path(), Path("/dev/..") / temp_.path().relative_path()}) {
      mountCard("0:44", elsewhere / "disk");
      EXPECT_EQ(volumes_.facts(card_).device, std::nullopt) << elsewhere;
    }
    return;
  }
  GTEST_SKIP() << "this machine has no block device to try the last case with";
}

TEST_F(LinuxVolumesOfAMachine, WhatCannotBeReadIsAbsent) {
  const VolumeFacts facts = volumes_.facts(card_);  // no list of mounts
  EXPECT_TRUE(facts.identifier && facts.available);
  EXPECT_FALSE(facts.root || facts.name || facts.device || facts.availableForImportantUse);
  mountCard("8:17");
  const VolumeFacts nothing = volumes_.facts(card_ / "missing");
  EXPECT_FALSE(nothing.identifier || nothing.available || nothing.root || nothing.device);
  EXPECT_NE(realVolumes.facts("/proc").identifier, realVolumes.facts(temp_.path()).identifier);
}

TEST_F(LinuxVolumesOfAMachine, ADeviceIsGoneOnceTheMachineNoLongerListsIt) {
  EXPECT_FALSE(volumes_.isGone({8, 1})) << "without a list nothing is known";
  const Path devices = roots_.sys / "dev/block";
  std::filesystem::create_directories(roots_.sys / "devices/sda1");
  std::filesystem::create_directories(devices);
  std::filesystem::create_directory_symlink("../../devices/sda1", devices / "8:1");
  EXPECT_FALSE(volumes_.isGone({8, 1}));
  EXPECT_TRUE(volumes_.isGone({8, 11}));
  EXPECT_TRUE(volumes_.isGone({1, 8}));
  std::filesystem::remove(devices / "8:1");
  EXPECT_TRUE(volumes_.isGone({8, 1}));
}

}  // namespace
}  // namespace PlatformKit::Testing
