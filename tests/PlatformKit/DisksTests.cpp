#include "PlatformKit/Linux/LinuxDisks.h"
#include "PlatformKit/Linux/LinuxVolumes.h"
#include "PlatformKit/Testing/FakeVolumes.h"
#include "PlatformKit/Testing/TempFolder.h"
#include "tests/PlatformKit/Machine.h"
#include "tests/PlatformKit/MountedImage.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace PlatformKit::Testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// All facts in one line: "sdb 'Maker Model' 4096 {A,B} internal".
std::string text(const DiskFacts& disk) {
  std::string names;
  for (const auto& name : disk.volumeNames) names += (names.empty() ? "" : ",") + name;
  std::string line = disk.identifier + " '" + disk.mediaName + "' " +
                     std::to_string(disk.sizeBytes) + " {" + names + "}";
  if (disk.isDiskImage) line += " image";
  if (disk.isVirtual) line += " virtual";
  if (disk.isSystemDisk) line += " system";
  if (disk.isInternal) line += " internal";
  if (disk.isRemovableMedia) line += " removable";
  if (disk.isHotPluggable) line += " pluggable";
  if (disk.isEjectable) line += " ejectable";
  return line;
}

class LinuxDisksOfAMachine : public Machine {
 protected:
  std::vector<std::string> list() {
    std::vector<std::string> lines;
    for (const auto& disk : disks_.list()) lines.push_back(text(disk));
    return lines;
  }

  // The identifier of the disk under a volume on that device; "none".
  std::string holding(std::optional<DeviceNumber> device) {
    VolumeFacts facts;
    facts.device = device;
    volumes_.lay("/volume", facts);
    const auto disk = disks_.holding("/volume/item");
    return disk ? disk->identifier : "none";
  }

 private:
  LinuxVolumes realVolumes_;

 protected:
  FakeVolumes volumes_{realVolumes_};
  LinuxDisks disks_{volumes_, {mountInfo_, sys_, udevData_}};
};

TEST_F(LinuxDisksOfAMachine, EveryKindOfConnectionTellsItsFacts) {
  add(usb("2-1", "removable") + "sdb", "8:16",
      {{"removable", "1"}, {"device/vendor", "Generic "}, {"device/model", "SD/MMC   CRW  "}});
  add(usb("2-2", "unknown") + "sdc", "8:32", {{"device/model", "PSSD T7"}, {"size", "2000000000"}});
  add(usb("2-3", "fixed") + "sdd", "8:48", {{"removable", "1"}});
  add(way({"pci0000=00", "0000=00=17.0:pci", "ata2:ata_port", "host1:scsi"}) + "/block/sda", "8:0",
      {{"device/vendor", "ATA     "}, {"device/model", "WDC WD40"}});
  const auto mmc = [&](const std::string& card) {
    return way({"pci0000=00", "0000=02=00.0:pci", "mmc_host", "mmc0:mmc_host", card + ":mmc"});
  };
  add(mmc("mmc0=aaaa") + "/block/mmcblk0", "179:0",
      {{"device/type", "SD"}, {"device/name", "SN64G"}});
  add(mmc("mmc1=0001") + "/block/mmcblk1", "179:8",
      {{"device/type", "MMC"}, {"device/name", "BJTD4R"}});
  add(mmc("mmc1=0001") + "/block/mmcblk1/mmcblk1boot0", "179:16");
  add(way({"pci0000=00", "0000=3c=00.0:pci:fixed", "nvme", "nvme0:nvme"}) + "/nvme0n1", "259:0",
      {{"device/model", "INT SSD"}});
  add(way({"pci0000=00", "0000=20=00.0:pci:removable", "0000=21=00.0:pci", "nvme", "nvme1:nvme"}) +
          "/nvme1n1",
      "259:8", {{"device/model", "TB RAID"}});
  add(way({"pci0000=00", "fw0:firewire", "host9:scsi"}) + "/block/sde", "8:64");
  add(way({"pci0000=00", "0000=00=02.0:pci", "virtio1:virtio"}) + "/block/vda", "254:0",
      {{"device/vendor", "0x1af4"}});
  add("virtual/block/loop5", "7:5", {{"loop/backing_file", "/home/u/card.img"}});
  add("virtual/block/nbd1", "43:1");
  add("virtual/block/rbd0", "252:0");
  EXPECT_THAT(list(), ElementsAre("loop5 '' 4096 {} image",
                                  "mmcblk0 'SD SN64G' 4096 {} internal removable ejectable",
                                  "mmcblk1 'BJTD4R' 4096 {} internal", "nbd1 '' 4096 {} image",
                                  "nvme0n1 'INT SSD' 4096 {} internal",
                                  "nvme1n1 'TB RAID' 4096 {} pluggable ejectable",
                                  "rbd0 '' 4096 {} virtual", "sda 'WDC WD40' 4096 {} internal",
                                  "sdb 'Generic SD/MMC CRW' 4096 {} removable pluggable ejectable",
                                  "sdc 'PSSD T7' 1024000000000 {} pluggable ejectable",
                                  "sdd '' 4096 {} internal removable ejectable",
                                  "sde '' 4096 {} pluggable ejectable", "vda '' 4096 {} internal"));
}

TEST_F(LinuxDisksOfAMachine, APlugAnywhereOnTheWayCounts) {
  // A reader that is fixed in a dock that is not; the same in a hub that is built in.
  add(way({"usb2:usb:unknown", "2-1:usb:removable", "2-1.4:usb:fixed", "2-1.4=1.0:usb"}) + "/sda",
      "8:0");
  add(way({"usb2:usb:unknown", "2-2:usb:fixed", "2-2.4:usb:fixed", "2-2.4=1.0:usb"}) + "/sdb",
      "8:16");
  add(way({"0000=20=00.0:pci:removable", "usb4:usb:unknown", "4-1:usb:fixed"}) + "/sdc", "8:32");
  EXPECT_THAT(list(), ElementsAre("sda '' 4096 {} pluggable ejectable", "sdb '' 4096 {} internal",
                                  "sdc '' 4096 {} pluggable ejectable"));
}

TEST_F(LinuxDisksOfAMachine, ADiskThatIsReachedInSeveralWaysIsWhereItsControllersAre) {
  const auto addDisk = [&](const std::string& digit, const std::string& numbers,
                           const std::vector<std::string>& wayToController) {
    const std::string subsystem = "virtual/nvme-subsystem/nvme-subsys" + digit;
    setSubsystem(subsystem, "nvme-subsystem");
    add(subsystem + "/nvme" + digit + "n1", numbers);
    const std::string controller = way(wayToController);
    set(controller, {{"model", "Two  Ways"}});
    std::filesystem::create_directory_symlink(
        (devices_ / controller).lexically_relative(devices_ / subsystem),
        devices_ / subsystem / Path(controller).filename());
  };
  addDisk("2", "259:16", {"pci0000=00", "0000=00=1e.0:pci:fixed", "nvme2:nvme"});
  addDisk("3", "259:17", {"pci0000=00", "0000=20=00.0:pci:removable", "nvme3:nvme"});
  addDisk("4", "259:18", {"virtual", "nvme-fabrics", "nvme4:nvme"});
  EXPECT_THAT(list(), ElementsAre("nvme2n1 'Two Ways' 4096 {} internal",
                                  "nvme3n1 'Two Ways' 4096 {} pluggable ejectable",
                                  "nvme4n1 'Two Ways' 4096 {} virtual"));
}

TEST_F(LinuxDisksOfAMachine, WhatHasNoMediumOfItsOwnIsLeftOut) {
  EXPECT_THAT(list(), IsEmpty());  // not even a list of devices
  add(usb("2-1", "removable") + "sdb", "8:16", {{"size", "0"}, {"removable", "1"}});
  add(usb("2-2", "removable") + "sr0", "11:0", {{"removable", "1"}});
  add(usb("2-3", "removable") + "sdd", "8:48");
  for (const auto& [name, numbers] : Attributes{{"loop1", "7:1"},
                                                {"ram0", "1:0"},
                                                {"zram0", "253:0"},
                                                {"dm-0", "254:0"},
                                                {"md127", "9:127"},
                                                {"nbd0", "43:0"}}) {
    add("virtual/block/" + name, numbers, {{"size", name == "nbd0" ? "0" : "8"}});
  }
  addMade("bcache0", "251:0", {usb("2-3", "removable") + "sdd"});
  // Pulled between the two looks.
  std::filesystem::create_directory_symlink("../../devices/gone", sys_ / "dev/block/8:64");
  EXPECT_THAT(list(), ElementsAre("sdd '' 4096 {} pluggable ejectable"));
  for (const DeviceNumber number :
       {DeviceNumber{8, 16}, {11, 0}, {253, 0}, {254, 0}, {9, 127}, {8, 64}, {8, 99}}) {
    EXPECT_EQ(holding(number), "none") << number.major << ":" << number.minor;
  }
}

TEST_F(LinuxDisksOfAMachine, VolumesAreNamedInTheOrderOfThePartitionsByLabelOrElseByMountPoint) {
  const std::string sdb = usb("2-1", "removable") + "sdb";
  add(sdb, "8:16");
  addPartition(sdb + "/sdb10", "8:17", "10");
  addPartition(sdb + "/sdb2", "259:3", "2");
  addPartition(sdb + "/sdb1", "259:9", "1");
  addPartition(sdb + "/sdb3", "8:18", "3");  // neither labelled nor mounted
  setLabel("259:9", "EOS\\x20DIGITAL");
  setLabel("259:3", "");
  mount("259:9", "/media/u/other");
  mount("259:3", "/media/u/My\\040Card");
  mount("259:3", "/elsewhere/folder");
  mount("8:17", "/media/last");
  const std::string sdc = usb("2-2", "removable") + "sdc";  // not partitioned
  add(sdc, "8:32");
  setLabel("8:32", "WHOLE");
  EXPECT_THAT(list(), ElementsAre("sdb '' 4096 {EOS DIGITAL,My Card,last} pluggable ejectable",
                                  "sdc '' 4096 {WHOLE} pluggable ejectable"));
}

TEST_F(LinuxDisksOfAMachine, EncryptedAndLogicalVolumesBelongToTheDiskBelow) {
  const std::string sdb = usb("2-1", "removable") + "sdb";
  add(sdb, "8:16");
  addPartition(sdb + "/sdb1", "8:17", "1");
  addPartition(sdb + "/sdb2", "8:18", "2");
  addPartition(sdb + "/sdb3", "8:19", "3");
  const std::string sdc = usb("2-2", "removable") + "sdc";
  add(sdc, "8:32");
  const std::string block = "virtual/block/";
  addMade("dm-0", "254:0", {sdb + "/sdb1"});                  // encryption
  addMade("dm-1", "254:1", {block + "dm-0", sdb + "/sdb2"});  // a volume in it
  addMade("dm-2", "254:2", {block + "dm-0", sdc});            // on two disks
  addMade("md0", "9:0", {sdb + "/sdb3"});
  addPartition(block + "md0/md0p1", "259:0", "1");
  setLabel("8:17", "container");
  setLabel("254:1", "Inside");
  mount("254:2", "/media/both");
  mount("259:0", "/media/array");
  EXPECT_THAT(list(), ElementsAre("sdb '' 4096 {Inside,both,array} pluggable ejectable",
                                  "sdc '' 4096 {both} pluggable ejectable"));
  EXPECT_EQ(holding(DeviceNumber{8, 16}), "sdb");
  EXPECT_EQ(holding(DeviceNumber{8, 18}), "sdb");
  EXPECT_EQ(holding(DeviceNumber{254, 1}), "sdb");
  EXPECT_EQ(holding(DeviceNumber{259, 0}), "sdb");
  EXPECT_EQ(holding(DeviceNumber{254, 2}), "none");
  EXPECT_EQ(holding(std::nullopt), "none");
}

TEST_F(LinuxDisksOfAMachine, WhatTheSystemRunsFromIsInternalHoweverItIsConnected) {
  const std::map<std::string, bool> points = {
      {"/", true},       {"/usr", true},        {"/home", true},
      {"/boot", true},   {"/boot/efi", true},   {"/home/u", false},
      {"/boots", false}, {"/media/usr", false}, {"/usr/local", false}};
  unsigned minor = 0;
  std::vector<std::string> expected;
  for (const auto& [point, isSystem] : points) {
    const std::string name = std::string("sd") + static_cast<char>('a' + minor);
    const std::string number = std::to_string(minor);
    const Path disk = Path(usb("2-" + number, "removable")) / name;
    const Path partition = disk / (name + "1");
    add(disk, "8:" + number);
    addPartition(partition, "259:" + number, "1");
    addMade("dm-" + number, "254:" + number, {partition});
    mount((minor % 2 == 0 ? "254:" : "259:") + number, point);
    expected.push_back(isSystem ? " system internal pluggable ejectable" : " pluggable ejectable");
    ++minor;
  }
  mount("8:99", "/");  // of a pulled disk
  const auto lines = list();
  ASSERT_EQ(lines.size(), expected.size());
  for (std::size_t i = 0; i < lines.size(); ++i) {
    EXPECT_EQ(lines[i].substr(lines[i].find('}') + 1), expected[i]) << lines[i];
  }
}

TEST(LinuxDisks, TheDiskUnderTheSystemOfThisMachineIsInternal) {
  LinuxVolumes volumes;
  LinuxDisks disks(volumes);
  const auto all = disks.list();
  const auto disk = disks.holding("/");
  if (!disk) GTEST_SKIP() << "the system of this machine is not on one disk";
  EXPECT_TRUE(disk->isSystemDisk && disk->isInternal) << text(*disk);
  EXPECT_NE(std::find(all.begin(), all.end(), *disk), all.end()) << text(*disk);
}

TEST(LinuxDisks, AMountedImageIsHeldByItsLoopDevice) {
  if (geteuid() != 0) GTEST_SKIP() << "only root may mount";
  const TempFolder temp;
  bool wasMounted = false;
  std::string device;
  std::optional<DiskFacts> disk;
  std::thread([&] {
    if (!leaveTheMountsOfOthers()) return;
    const MountedImage image(temp.path());
    wasMounted = image.isMounted();
    if (!wasMounted) return;
    device = image.device();
    LinuxVolumes::Roots roots;
    roots.mountInfo = "/proc/thread-self/mountinfo";
    LinuxVolumes volumes(roots);
    LinuxDisks disks(volumes, {roots.mountInfo, roots.sys, temp.path()});
    disk = disks.holding(image.point());
  }).join();
  if (!wasMounted) GTEST_SKIP() << "this machine cannot mount an image";
  ASSERT_TRUE(disk);
  EXPECT_EQ(text(*disk),
            device + " '' " + std::to_string(MountedImage::kSize) + " {My Image} image");
}

}  // namespace
}  // namespace PlatformKit::Testing
