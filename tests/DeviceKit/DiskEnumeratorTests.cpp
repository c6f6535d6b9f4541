#include "DeviceKit/DiskEnumerator.h"
#include "PlatformKit/Testing/FakeDisks.h"

#include <initializer_list>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace DeviceKit {
namespace {

using PlatformKit::DiskFacts;
using PlatformKit::Testing::FakeDisks;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FakeUnmounter final : public PlatformKit::Unmounter {
 public:
  bool unmountDisk(const std::string& identifier) override { return identifier == "sdb"; }
};

using Flags = std::vector<bool DiskFacts::*>;

DiskFacts disk(const std::string& identifier, const Flags& flags) {
  DiskFacts facts;
  facts.identifier = identifier;
  for (const auto flag : flags) facts.*flag = true;
  return facts;
}

constexpr auto kImage = &DiskFacts::isDiskImage;
constexpr auto kVirtual = &DiskFacts::isVirtual;
constexpr auto kSystem = &DiskFacts::isSystemDisk;
constexpr auto kInternal = &DiskFacts::isInternal;
constexpr auto kRemovable = &DiskFacts::isRemovableMedia;
constexpr auto kPluggable = &DiskFacts::isHotPluggable;
constexpr auto kEjectable = &DiskFacts::isEjectable;

TEST(DiskEnumerator, ADiskIsLikeAMemoryCardByTheFirstRuleThatFits) {
  const struct {
    Flags flags;
    bool withoutImages;
    bool withImages;
  } kCases[] = {
      {{}, true, true},
      {{kPluggable, kEjectable}, true, true},
      {{kRemovable, kPluggable, kEjectable}, true, true},
      {{kInternal}, false, false},
      {{kInternal, kRemovable}, true, true},
      {{kInternal, kPluggable}, false, false},
      {{kInternal, kEjectable}, false, false},
      {{kInternal, kPluggable, kEjectable}, true, true},
      {{kSystem, kPluggable, kEjectable}, false, false},
      {{kSystem, kInternal, kRemovable}, false, false},
      {{kVirtual}, false, false},
      {{kVirtual, kRemovable, kEjectable}, false, false},
      {{kImage}, false, true},
      {{kImage, kVirtual, kSystem, kInternal}, false, true},
      {{kImage, kRemovable, kPluggable, kEjectable}, false, true},
  };
  for (const auto& [flags, withoutImages, withImages] : kCases) {
    const auto number = &flags - &kCases[0].flags;
    const DiskFacts facts = disk("sdb", flags);
    EXPECT_EQ(DiskEnumerator::isMemoryCardLike(facts, false), withoutImages) << number;
    EXPECT_EQ(DiskEnumerator::isMemoryCardLike(facts, true), withImages) << number;
  }
}

TEST(DiskEnumerator, ListsWhatIsLikeAMemoryCardWithItsFactsInOrder) {
  FakeDisks disks;
  DiskFacts card = disk("sdb", {kRemovable, kPluggable, kEjectable});
  card.mediaName = "SDXC Reader";
  card.sizeBytes = 64'000'000'000;
  card.volumeNames = {"EOS", "DATA"};
  disks.disks = {disk("loop5", {kImage}), disk("sda", {kInternal, kSystem}), card,
                 disk("sdc", {kPluggable})};
  const DiskEnumerator enumerator(disks, nullptr);
  const ExternalDisk record = {"sdb", "SDXC Reader", 64'000'000'000, {"EOS", "DATA"}};
  const ExternalDisk image = {"loop5", "", 0, {}};
  const ExternalDisk drive = {"sdc", "", 0, {}};
  EXPECT_THAT(enumerator.externalDisks(false), ElementsAre(record, drive));
  EXPECT_THAT(enumerator.externalDisks(true), ElementsAre(image, record, drive));
  disks.disks.clear();
  EXPECT_THAT(enumerator.externalDisks(true), IsEmpty());
}

TEST(DiskEnumerator, TheWholeDiskOfAVolumeIsTheOneBelowIt) {
  FakeDisks disks;
  // Also of a disk that is no card: any folder may be copied.
  disks.below["/media/card"] = disk("sdd", {kInternal});
  disks.below["/media/card"].sizeBytes = 1024;
  const DiskEnumerator enumerator(disks, nullptr);
  EXPECT_EQ(enumerator.wholeDisk("/media/card"), (WholeDisk{"sdd", "/dev/sdd", 1024}));
  EXPECT_EQ(enumerator.wholeDisk("/media/nas"), std::nullopt);
}

TEST(DiskEnumerator, UnmountsThroughWhoeverCan) {
  FakeDisks disks;
  FakeUnmounter unmounter;
  EXPECT_TRUE(DiskEnumerator(disks, &unmounter).unmountDisk("sdb"));
  EXPECT_FALSE(DiskEnumerator(disks, &unmounter).unmountDisk("sdc"));
  EXPECT_FALSE(DiskEnumerator(disks, nullptr).unmountDisk("sdb"));
}

TEST(ExternalDisk, IsCalledByItsVolumesElseItsMediaElseItsDevice) {
  ExternalDisk record = {"mmcblk0", "SD SN64G", 63'900'000'000, {"EOS DIGITAL", "Untitled"}};
  EXPECT_EQ(record.displayName(), "EOS DIGITAL, Untitled");
  record.volumeNames.clear();
  EXPECT_EQ(record.displayName(), "SD SN64G");
  record.mediaName.clear();
  EXPECT_EQ(record.displayName(), "mmcblk0");
  EXPECT_EQ(record.id(), "mmcblk0");
  EXPECT_EQ(record.rawDevicePath(), "/dev/mmcblk0");
  EXPECT_EQ(record.sizeDescription(), "63.9 GB");
}

TEST(ExternalDisk, IsAMemoryCardWhenAWholeWordOfItsMediaNameSaysSo) {
  for (const char* name :
       {"SDXC Reader", "sd", "Generic SD/MMC CRW", "SDHC", "x_SDUC_y", "MicroSD", "My-card", "(CF)",
        "CFast 2.0", "CFexpress", "XQD", "MMC", "SxS", "\xFFSD\xFF", "Größe READER", "SD\u2003x"}) {
    EXPECT_TRUE((ExternalDisk{"sdb", name, 0, {}}.isMemoryCard())) << name;
  }
  for (const char* name : {"", "Cardinal Drive", "Generic Mass-Storage", "SDcard", "SD2", "2SD",
                           "ÄSD", "SDé", "SDe\u0301", "SD\u0301", "micro sdx", "readers", "٣SD"}) {
    EXPECT_FALSE((ExternalDisk{"sdb", name, 0, {}}.isMemoryCard())) << name;
  }
}

}  // namespace
}  // namespace DeviceKit
