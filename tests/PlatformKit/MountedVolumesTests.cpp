#include "PlatformKit/Linux/LinuxMountedVolumes.h"
#include "tests/PlatformKit/Machine.h"
#include "tests/PlatformKit/MountedImage.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace PlatformKit::Testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Lines = std::vector<std::string>;

// All facts in one line: "/media/u/EOS 'EOS DIGITAL' 8:17 removable ejectable".
std::string text(const MountedVolume& volume) {
  std::string line = volume.root.native() + " '" + volume.name + "'";
  if (volume.device) {
    line += " " + std::to_string(volume.device->major) + ":" + std::to_string(volume.device->minor);
  }
  if (volume.isRootFileSystem) line += " root";
  if (volume.isReadOnly) line += " read-only";
  if (volume.isNetwork) line += " network";
  if (volume.isDiskImage) line += " image";
  if (volume.isInternal) line += " internal";
  if (volume.isRemovable) line += " removable";
  if (volume.isEjectable) line += " ejectable";
  return line;
}

// The text with the digits for each "#".
std::string filled(std::string text, const std::string& digits) {
  for (std::size_t at = 0; (at = text.find('#', at)) != std::string::npos;) {
    text.replace(at, 1, digits);
  }
  return text;
}

class LinuxMountedVolumesOfAMachine : public Machine {
 protected:
  Lines list() {
    Lines lines;
    for (const auto& volume : volumes_.list()) lines.push_back(text(volume));
    return lines;
  }

  // A disk "8:N" without partitions that is mounted.
  std::string addUsb(int number, const std::string& point, const MountDetails& details = {}) {
    const std::string digits = std::to_string(number);
    std::string disk = usb("2-" + digits, "removable") + "sd" + digits;
    add(disk, "8:" + digits);
    if (!point.empty()) mount("8:" + digits, point, details);
    return disk;
  }

  LinuxMountedVolumes volumes_{{mountInfo_, sys_, udevData_}};
};

TEST_F(LinuxMountedVolumesOfAMachine, AVolumeHasTheFactsOfTheDiskUnderIt) {
  const auto addMounted = [&](const Path& disk, const std::string& major, const std::string& point,
                              const Attributes& attributes, const MountDetails& details) {
    add(disk, major + ":0", attributes);
    addPartition(disk / (disk.filename().native() + "p1"), major + ":1", "1");
    mount(major + ":1", point, details);
  };
  const auto mmc = [&](const std::string& card) {
    return way({"pci0000=00", "0000=02=00.0:pci", "mmc_host", "mmc0:mmc_host", card + ":mmc"}) +
           "/block/";
  };
  addMounted(way({"pci0000=00", "0000=3c=00.0:pci:fixed", "nvme", "nvme0:nvme"}) + "/nvme0n1",
             "259", "/", {}, {});
  addMounted(way({"pci0000=00", "0000=00=17.0:pci", "ata2:ata_port", "host1:scsi"}) + "/block/sda",
             "65", "/data", {}, {});
  addMounted(usb("2-1", "removable") + "sdb", "66", "/media/u/CARD", {{"removable", "1"}},
             {"exfat", "/dev/sdb1"});
  addMounted(usb("2-2", "removable") + "sdc", "67", "/media/u/SSD", {},
             {"fuseblk", "/dev/sdc1", "/", "rw,nosuid,relatime", "rw,allow_other,blksize=4096"});
  addMounted(usb("2-3", "fixed") + "sdd", "68", "/media/u/BUILT-IN", {{"removable", "1"}}, {});
  addMounted(usb("2-4", "unknown") + "sde", "69", "/media/u/LOCKED", {{"removable", "1"}},
             {"vfat", "/dev/sde1", "/", "ro,noatime", "ro"});
  addMounted(mmc("mmc0=aaaa") + "mmcblk0", "179", "/run/media/u/SONY", {{"device/type", "SD"}}, {});
  addMounted(mmc("mmc1=0001") + "mmcblk1", "180", "/mnt/emmc", {{"device/type", "MMC"}}, {});
  addMounted(way({"pci0000=00", "0000=20=00.0:pci:removable", "nvme", "nvme1:nvme"}) + "/nvme1n1",
             "260", "/media/u/TB", {}, {"ext4", "none", "/", "rw,errors=remount-ro", "rw,ro_x"});
  addMounted("virtual/block/loop5", "7", "/media/u/IMAGE",
             {{"loop/backing_file", "/home/u/card.img"}}, {"ext4", "none", "/", "rw", "a,ro,b"});
  addMounted("virtual/block/rbd0", "252", "/mnt/rbd", {}, {});
  EXPECT_THAT(list(),
              ElementsAre("/ '/' 259:1 root internal", "/data 'data' 65:1 internal",
                          "/media/u/CARD 'CARD' 66:1 removable ejectable",
                          "/media/u/SSD 'SSD' 67:1 ejectable",
                          "/media/u/BUILT-IN 'BUILT-IN' 68:1 internal removable ejectable",
                          "/media/u/LOCKED 'LOCKED' 69:1 read-only removable ejectable",
                          "/run/media/u/SONY 'SONY' 179:1 internal removable ejectable",
                          "/mnt/emmc 'emmc' 180:1 internal", "/media/u/TB 'TB' 260:1 ejectable",
                          "/media/u/IMAGE 'IMAGE' 7:1 read-only image", "/mnt/rbd 'rbd' 252:1"));
}

TEST_F(LinuxMountedVolumesOfAMachine, AVolumeOnSeveralDisksHasWhatIsTrueOfAllOfThem) {
  const std::string ssd = addUsb(1, "");
  const std::string card = usb("3-1", "removable") + "card";
  add(card, "8:2", {{"removable", "1"}});
  const std::string internal = way({"pci0000=00", "ata2:ata_port"}) + "/block/sda";
  add(internal, "8:3");
  add("virtual/block/loop5", "7:5", {{"loop/backing_file", "/card.img"}});
  addMade("dm-0", "254:0", {ssd});
  addMade("dm-1", "254:1", {"virtual/block/dm-0"});  // a logical volume in encryption
  addMade("dm-2", "254:2", {ssd, card});
  addMade("dm-3", "254:3", {card, internal});
  addMade("dm-4", "254:4", {"virtual/block/loop5"});
  addMade("dm-5", "254:5", {internal});
  addMade("dm-6", "254:6", {card});
  addMade("dm-7", "254:7", {card, "virtual/block/loop5"});
  for (const char* digit : {"1", "2", "3", "4", "5", "6", "7"}) {
    mount(std::string("254:") + digit, std::string("/media/") + digit);
  }
  setLabel("8:1", "container");
  setLabel("254:1", "LaCie");
  EXPECT_THAT(
      list(),
      ElementsAre("/media/1 'LaCie' 254:1 ejectable", "/media/2 '2' 254:2 ejectable",
                  "/media/3 '3' 254:3", "/media/4 '4' 254:4 image", "/media/5 '5' 254:5 internal",
                  "/media/6 '6' 254:6 removable ejectable", "/media/7 '7' 254:7 image"));
}

TEST_F(LinuxMountedVolumesOfAMachine, WhatIsTheSystemsOwnOrGoneIsNotListed) {
  EXPECT_THAT(list(), IsEmpty());  // not even a list of mounts
  int number = 1;
  for (const char* point : {"/boot", "/boot/efi", "/snap/core/1", "/var", "/var/lib/docker/x"}) {
    addUsb(number++, point);
  }
  add("virtual/block/loop6", "7:6", {{"loop/backing_file", "/x.snap"}});
  mount("7:6", "/media/u/App", {"squashfs", "/dev/loop6"});
  add("virtual/block/zram0", "253:0");
  mount("253:0", "/media/u/zram");
  addMade("dm-0", "254:0", {});  // its disk was pulled
  mount("254:0", "/media/u/LUKS");
  mount("8:99", "/media/u/PULLED");
  mount("0:60", "/media/u/BTRFS", {"btrfs", "/dev/no-such-disk"});
  for (const char* kind :
       {"proc", "sysfs", "tmpfs", "devtmpfs", "cgroup2", "overlay", "autofs", "ramfs", "efivarfs",
        "fuse.portal", "fuse.gvfsd-fuse", "fuse.lxcfs", "fuse", "zfs", "nfsd", "rpc_pipefs"}) {
    mount("0:" + std::to_string(number++), std::string("/mnt/") + kind, {kind, kind});
  }
  EXPECT_THAT(list(), IsEmpty());
  // Only whole names count.
  for (const char* point : {"/variety", "/media/boot", "/snapshots"}) addUsb(number++, point);
  EXPECT_EQ(list().size(), 3U);
}

TEST_F(LinuxMountedVolumesOfAMachine, VolumesOfOtherComputersAreKnownByTheirFileSystem) {
  const std::vector<MountDetails> mounts = {
      {"nfs", "nas:/x"},          {"nfs4", "[fe80::1]:/x"},  {"cifs", "//nas/x"},
      {"smb3", "//nas/x"},        {"9p", "share"},           {"ceph", "10.0.0.1:/"},
      {"fuse.sshfs", "u@nas:/x"}, {"fuse.rclone", "cloud:"}, {"fuse", "https://nas/dav"}};
  int number = 0;
  Lines expected;
  for (const MountDetails& details : mounts) {
    const std::string digits = std::to_string(number++);
    mount("0:" + digits, "/net/" + digits, details);
    expected.push_back(filled("/net/# '#' network", digits));
  }
  // One number for two folders of one server, and the second one twice.
  mount("0:0", "/net/other", {"nfs", "nas:/y", "/y", "ro"});
  mount("0:0", "/net/bound", {"nfs", "nas:/y", "/y"});
  expected.push_back("/net/other 'other' read-only network");
  EXPECT_EQ(list(), expected);
}

TEST_F(LinuxMountedVolumesOfAMachine, EachDeviceIsListedOnceWherePeopleKnowIt) {
  addUsb(1, "/");
  addUsb(2, "/srv/folder", {"ext4", "/dev/sd2", "/DCIM"});
  addUsb(3, "/media/THREE");
  mount("8:1", "/home/u/bound", {"ext4", "/dev/sd1", "/data"});
  mount("8:1", "/mnt/all");
  mount("8:3", "/srv/again");
  mount("8:2", "/media/TWO");
  mount("8:2", "/srv/later", {"ext4", "/dev/sd2", "/DCIM"});
  // Mounted over each other: whoever looks there finds the last.
  addUsb(4, "/media/place");
  addUsb(5, "/media/place");
  addUsb(6, "/media/covered");
  mount("0:9", "/media/covered", {"tmpfs", "tmpfs"});
  EXPECT_THAT(list(),
              ElementsAre("/ '/' 8:1 root internal", "/media/THREE 'THREE' 8:3 ejectable",
                          "/media/TWO 'TWO' 8:2 ejectable", "/media/place 'place' 8:5 ejectable"));
}

TEST_F(LinuxMountedVolumesOfAMachine, AVolumeIsCalledByItsLabelOrElseByItsPlace) {
  addUsb(1, "/media/u/EOS_DIGITAL");
  setLabel("8:1", "EOS\\x20DIGITAL\\x0a\\xff");
  addUsb(2, "/media/u/My\\040Card\\134040\\012\xFF");
  addUsb(3, "/media/u/empty");
  setLabel("8:3", "");
  addUsb(4, "/");
  EXPECT_THAT(list(),
              ElementsAre("/media/u/EOS_DIGITAL 'EOS DIGITAL\n\xFF' 8:1 ejectable",
                          "/media/u/My Card\\040\n\xFF 'My Card\\040\n\xFF' 8:2 ejectable",
                          "/media/u/empty 'empty' 8:3 ejectable", "/ '/' 8:4 root internal"));
}

TEST_F(LinuxMountedVolumesOfAMachine, NothingOnTheDiskTheSystemRunsFromCanBeTakenOut) {
  const std::string stick = usb("2-1", "removable") + "sdb";
  add(stick, "8:16", {{"removable", "1"}});
  addPartition(stick + "/sdb1", "8:17", "1");
  addPartition(stick + "/sdb2", "8:18", "2");
  mount("8:17", "/");
  mount("8:18", "/media/u/rest");
  EXPECT_THAT(list(),
              ElementsAre("/ '/' 8:17 root internal", "/media/u/rest 'rest' 8:18 internal"));
}

TEST_F(LinuxMountedVolumesOfAMachine, AHundredMountsKeepTheirOrder) {
  const Path disk = addUsb(0, "");
  Lines expected;
  for (int number = 100; number > 0; --number) {
    const std::string digits = std::to_string(number);
    addPartition(disk / ("part" + digits), "8:" + digits, digits);
    mount("8:" + digits, "/media/" + digits);
    mount("8:" + digits, "/srv/" + digits);
    expected.push_back(filled("/media/# '#' 8:# ejectable", digits));
  }
  EXPECT_EQ(list(), expected);
}

TEST_F(LinuxMountedVolumesOfAMachine, TextOfAnotherFormCostsOnlyItsOwnLine) {
  addUsb(1, "/media/good");
  addUsb(2, "");
  const std::string good = readFile(mountInfo_);
  std::string bad;
  for (const char* line :
       {"1 0 8:2 / /x rw - ext4", "1 0 8:2 / /x rw ext4 none rw", "1 0 8: / /x rw - ext4 none rw",
        "1 0 8:99999999999 / /x rw - ext4 none rw", "\xFF\xFE", "- - - - - - - - - -"}) {
    bad += std::string(line) + "\n";
  }
  for (unsigned seed = 1; seed <= 50; ++seed) bad += pattern(200, seed) + "\n";
  writeFile(mountInfo_, bad + good + bad + std::string(1, '\0'));
  EXPECT_THAT(list(), ElementsAre("/media/good 'good' 8:1 ejectable"));
  // Without super options, and places that are none.
  writeFile(mountInfo_, "1 0 8:1 / /y rw - ext4 none\n1 0 8:2 / relative ro - ext4 none\n");
  EXPECT_THAT(list(),
              ElementsAre("/y 'y' 8:1 ejectable", "relative 'relative' 8:2 read-only ejectable"));
}

TEST_F(LinuxMountedVolumesOfAMachine, TheVolumeThatHoldsAnItemIsToldHiddenOrNot) {
  const Path folder = mountInfo_.parent_path();
  for (const char* name : {"card/DCIM", "memory", "net", "gone", "program"}) {
    std::filesystem::create_directories(folder / name);
  }
  std::filesystem::create_directory_symlink("card/DCIM", folder / "link");
  EXPECT_EQ(volumes_.holding(folder), std::nullopt);
  addUsb(1, folder / "card", {"squashfs"});
  mount("0:7", "/", {"overlay", "overlay"});
  mount("0:8", folder / "memory", {"tmpfs", "tmpfs"});
  mount("0:9", folder / "net", {"nfs", "nas:/x"});
  mount("8:99", folder / "gone");
  mount("0:10", folder / "program", {"fuse.encfs", "encfs"});
  const auto holding = [&](const char* name) { return text(*volumes_.holding(folder / name)); };
  EXPECT_THAT(holding("link"), HasSubstr("/card 'card' 8:1 ejectable"));
  EXPECT_EQ(holding(".."), "/ '/' root internal");
  EXPECT_THAT(holding("memory"), HasSubstr("/memory 'memory' internal"));
  EXPECT_THAT(holding("net"), HasSubstr("/net 'net' network"));
  EXPECT_THAT(holding("gone"), ::testing::EndsWith("/gone 'gone' 8:99"));
  EXPECT_THAT(holding("program"), ::testing::EndsWith("/program 'program'"));
  EXPECT_EQ(volumes_.holding(folder / "missing"), std::nullopt);
}

TEST_F(LinuxMountedVolumesOfAMachine, OnlyAMountedVolumeHasSizes) {
  const Path folder = mountInfo_.parent_path();
  EXPECT_EQ(volumes_.space(folder), std::nullopt);
  addUsb(1, folder);
  addUsb(2, folder / "missing");
  const auto space = volumes_.space(folder);
  ASSERT_TRUE(space);
  EXPECT_EQ(space->capacity, std::filesystem::space(folder).capacity);
  EXPECT_TRUE(space->available > 0 && space->available <= space->capacity);
  EXPECT_EQ(volumes_.space(folder / "missing"), std::nullopt);
}

TEST(LinuxMountedVolumes, AMountedImageAppearsAndGoesWhenItIsUnmounted) {
  if (geteuid() != 0) GTEST_SKIP() << "only root may mount";
  const TempFolder temp;
  bool wasMounted = false;
  std::thread([&] {
    if (!leaveTheMountsOfOthers()) return;
    MountedImage image(temp.path());
    wasMounted = image.isMounted();
    if (!wasMounted) return;
    LinuxMountedVolumes volumes({"/proc/thread-self/mountinfo", "/sys", temp.path()});
    const auto find = [&]() -> std::optional<MountedVolume> {
      const auto list = volumes.list();
      const auto found = std::find_if(list.begin(), list.end(), [&](const auto& volume) {
        return volume.root == image.point();
      });
      if (found == list.end()) return std::nullopt;
      return *found;
    };
    const auto volume = find();
    ASSERT_TRUE(volume);
    EXPECT_TRUE(volume->isDiskImage && !volume->isInternal && !volume->isReadOnly);
    EXPECT_EQ(volume->name, "My Image");
    EXPECT_EQ(volumes.holding(image.point() / "lost+found"), volume);
    const auto space = volumes.space(image.point());
    ASSERT_TRUE(space);
    EXPECT_GT(space->capacity, MountedImage::kSize / 2);
    EXPECT_LE(space->capacity, MountedImage::kSize);
    EXPECT_TRUE(succeeds("mount -o remount,ro '" + image.point().native() + "'"));
    EXPECT_TRUE(find() && find()->isReadOnly);
    image.unmount();
    EXPECT_FALSE(find());
    EXPECT_EQ(volumes.space(image.point()), std::nullopt);
  }).join();
  if (!wasMounted) GTEST_SKIP() << "this machine cannot mount an image";
}

}  // namespace
}  // namespace PlatformKit::Testing
