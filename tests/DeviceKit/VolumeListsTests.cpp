#include "DeviceKit/VolumeLists.h"
#include "DeviceKit/VolumeSpaces.h"
#include "PlatformKit/Testing/FakeMountedVolumes.h"

#include <chrono>
#include <future>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

#include <gtest/gtest.h>

namespace DeviceKit {
namespace {

using namespace std::chrono_literals;
using PlatformKit::MountedVolume;
using PlatformKit::Path;
using PlatformKit::VolumeSpace;
using PlatformKit::Testing::FakeMountedVolumes;

constexpr auto kRoot = &MountedVolume::isRootFileSystem;
constexpr auto kReadOnly = &MountedVolume::isReadOnly;
constexpr auto kNetwork = &MountedVolume::isNetwork;
constexpr auto kImage = &MountedVolume::isDiskImage;
constexpr auto kInternal = &MountedVolume::isInternal;
constexpr auto kRemovable = &MountedVolume::isRemovable;
constexpr auto kEjectable = &MountedVolume::isEjectable;

TEST(VolumeLists, AVolumeIsACardOrADriveOrBothOrNeither) {
  const struct {
    std::vector<bool MountedVolume::*> flags;
    bool isCard;
    bool isDrive;
  } kCases[] = {
      {{}, false, true},
      {{kEjectable}, true, true},
      {{kRemovable, kEjectable}, true, true},
      {{kReadOnly, kRemovable, kEjectable}, true, false},
      {{kReadOnly, kEjectable}, true, false},
      {{kInternal}, false, false},
      {{kInternal, kEjectable}, false, false},
      {{kInternal, kRemovable, kEjectable}, true, false},
      {{kImage}, false, true},
      {{kImage, kRemovable, kEjectable}, false, true},
      {{kImage, kReadOnly}, false, false},
      {{kNetwork}, false, true},
      {{kNetwork, kRemovable, kEjectable}, false, true},
      {{kNetwork, kReadOnly}, false, false},
      {{kRoot, kRemovable, kEjectable}, false, false},
      {{kRoot, kInternal}, false, false},
  };
  for (const auto& oneCase : kCases) {
    MountedVolume volume;
    for (const auto flag : oneCase.flags) volume.*flag = true;
    const auto number = &oneCase - &kCases[0];
    EXPECT_EQ(isCard(volume), oneCase.isCard) << number;
    EXPECT_EQ(isDrive(volume), oneCase.isDrive) << number;
  }
}

TEST(VolumeLists, ARowHasTheNameTheSizesAndWhetherTheMediumIsRemovable) {
  MountedVolume volume;
  volume.root = "/media/u/EOS";
  volume.name = "EOS DIGITAL";
  const Volume drive = driveRow(volume, VolumeSpace{64, 12});
  EXPECT_EQ(drive, (Volume{"/media/u/EOS", "EOS DIGITAL", 64, 12, false}));
  EXPECT_EQ(cardRow(volume, std::nullopt), (Volume{"/media/u/EOS", "EOS DIGITAL", 0, 0, true}));
  volume.name.clear();
  volume.isRemovable = true;
  constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
  EXPECT_EQ(driveRow(volume, VolumeSpace{std::numeric_limits<std::uint64_t>::max(), 1}),
            (Volume{"/media/u/EOS", "EOS", kMost, 1, true}));
}

TEST(VolumeSpaces, AVolumeThatDoesNotAnswerHoldsUpNoOther) {
  const auto volumes = std::make_shared<FakeMountedVolumes>();
  const std::vector<Path> roots = {"/net/dead", "/media/a", "/media/unknown", "/media/b"};
  volumes->setSpace("/net/dead", VolumeSpace{5, 5});
  volumes->setSpace("/media/a", VolumeSpace{2, 1});
  volumes->setSpace("/media/b", VolumeSpace{4, 3});
  EXPECT_TRUE(volumeSpaces(volumes, {}, 1h).empty());
  const std::vector<std::optional<VolumeSpace>> all = {VolumeSpace{5, 5}, VolumeSpace{2, 1},
                                                       std::nullopt, VolumeSpace{4, 3}};
  EXPECT_EQ(volumeSpaces(volumes, roots, 1h), all);

  std::promise<void> serverReturns;
  const auto returned = serverReturns.get_future().share();
  volumes->beforeSpace = [returned](const Path& root) {
    if (root == "/net/dead") returned.wait();
  };
  auto answered = all;
  answered[0] = std::nullopt;
  EXPECT_EQ(volumeSpaces(volumes, roots, 500ms), answered);
  // Whoever still waits keeps the volumes alive, and ends when they answer.
  const std::weak_ptr<FakeMountedVolumes> watched = volumes;
  EXPECT_GE(watched.use_count(), 2);
  serverReturns.set_value();
}

}  // namespace
}  // namespace DeviceKit
