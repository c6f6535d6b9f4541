#include "tests/Model/ModelFixture.h"

namespace ZephrimarkOffload {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<Path> urlsOf(const std::vector<DeviceKit::Volume>& volumes) {
  std::vector<Path> urls;
  for (const auto& volume : volumes) urls.push_back(volume.url);
  return urls;
}

class OffloadModelTests : public ModelFixture {
 protected:
  void fireAndWaitFor(OffloadModel& model, const std::vector<Path>& cards) {
    watcher_->fire();
    EXPECT_TRUE(waitUntil([&] { return urlsOf(model.setup().cards()) == cards; }));
  }
};

TEST_F(OffloadModelTests, TheOnlyCardIsTakenAndFollowed) {
  OffloadModel& model = makeModel();
  EXPECT_EQ(model.blocker(), "Choose a card to offload.");
  ASSERT_TRUE(waitUntil([&] { return model.setup().drives().size() == 2; }));
  EXPECT_FALSE(model.setup().hasSource());

  addCard(card_, 1204, 64'200'000'000);
  fireAndWaitFor(model, {card_});
  EXPECT_EQ(model.setup().source()->path, card_);
  EXPECT_EQ(model.blocker(), "Add at least one drive to copy to.");
  ASSERT_TRUE(waitUntil([&] { return model.setup().source()->count.files == 1204; }));
  EXPECT_EQ(model.setup().source()->facts.name, "A001");
  EXPECT_EQ(model.setup().camera(), "Canon");
  EXPECT_EQ(model.setup().source()->count.bytes, 64'200'000'000);
  EXPECT_EQ(model.setup().cards().front().capacity, 128'000'000'000);
  EXPECT_EQ(folderName(model.setup().request()), "2026-10-07/A001");

  // A second card changes nothing; when the first is pulled, the one that is left is taken.
  addCard("/media/B002", 7, 7);
  fireAndWaitFor(model, {card_, "/media/B002"});
  EXPECT_EQ(model.setup().source()->path, card_);
  disks_->change([&](FakeDiskQueries& disks) {
    std::erase(disks.volumes_, cardVolume(card_));
    disks.gone_.insert(card_);
  });
  fireAndWaitFor(model, {"/media/B002"});
  ASSERT_TRUE(waitUntil([&] { return model.setup().source()->count.files == 7; }));
  EXPECT_EQ(model.setup().source()->path, "/media/B002");

  // The last one goes.
  disks_->change([&](FakeDiskQueries& disks) {
    std::erase(disks.volumes_, cardVolume("/media/B002"));
    disks.gone_.insert("/media/B002");
  });
  fireAndWaitFor(model, {});
  EXPECT_FALSE(model.setup().hasSource());
  EXPECT_EQ(model.setup().source()->facts.name, "");
  EXPECT_EQ(model.setup().source()->count.bytes, 0);
  EXPECT_EQ(model.setup().camera(), "Canon");
}

TEST_F(OffloadModelTests, DestinationsAreThreeAtMostAndOfferedOnce) {
  addDrive("/media/SSD", 1'000, 4);
  addDrive("/media/X", 1'000, 5);
  OffloadModel& model = makeModel();
  ASSERT_TRUE(waitUntil([&] { return model.setup().drives().size() == 4; }));
  disks_->change([&](FakeDiskQueries& disks) {
    auto facts = disks.destinations_[t7_];
    disks.destinations_[t7_ / "Footage"] = facts;
  });
  model.setup().addDestination(t7_ / "Footage");
  model.setup().addDestination(t7_ / "Footage");
  ASSERT_TRUE(waitUntil([&] { return model.setup().destinationFacts(0).has_value(); }));
  EXPECT_THAT(urlsOf(model.setup().suggestedDrives()),
              ElementsAre(raid_, "/media/SSD", "/media/X"));
  model.setup().setSource(raid_);
  EXPECT_THAT(urlsOf(model.setup().suggestedDrives()), ElementsAre("/media/SSD", "/media/X"));
  model.setup().addDestination("/media/SSD");
  model.setup().addDestination("/media/X");
  model.setup().addDestination(raid_);
  EXPECT_THAT(model.setup().destinations(), ElementsAre(t7_ / "Footage", "/media/SSD", "/media/X"));
  EXPECT_THAT(planFor(model.setup().request()).destinations,
              ElementsAre(t7_ / "Footage/2026-10-07/RAID", "/media/SSD/2026-10-07/RAID",
                          "/media/X/2026-10-07/RAID"));
  model.setup().removeDestination("/media/SSD");
  EXPECT_THAT(model.setup().destinations(), ElementsAre(t7_ / "Footage", "/media/X"));
  EXPECT_FALSE(model.setup().onlyInternalCopies());
}

TEST_F(OffloadModelTests, ACardImageNeedsAWholeCardAndGoesWhereMostIsFree) {
  addCard(card_, 3, 100);
  OffloadModel& model = makeReadyModel();
  const auto image = [&] { return planFor(model.setup().request()).cardImage; };
  EXPECT_FALSE(image());
  model.setup().set(&Options::saveCardImage, true);
  ASSERT_TRUE(image());
  EXPECT_EQ(image()->devicePath, "/dev/sdc");
  EXPECT_EQ(image()->destinationIndex, 0);  // of equal ones the first
  EXPECT_EQ(image()->size, 128'000'000'000);

  disks_->change([&](FakeDiskQueries& disks) {
    disks.destinations_[t7_].freeSpace = 90'000'000'000;
    disks.destinations_[raid_].freeSpace = 128'000'000'099;
  });
  model.setup().refresh();
  ASSERT_TRUE(waitUntil([&] { return image()->destinationIndex == 1; }));
  ASSERT_TRUE(waitUntil([&] {
    return model.blocker() == "RAID doesn't have room for this card and its card image.";
  }));
  EXPECT_EQ(model.stepStatus(), "RAID doesn't have room for this card and its card image.");
  model.setup().setSource("/home/u/folder");
  EXPECT_FALSE(model.setup().source()->facts.disk);
  EXPECT_FALSE(image());
}

TEST_F(OffloadModelTests, ChoicesSurviveALaunchAndWhatIsGoneIsDropped) {
  OffloadModel& first = makeModel();
  first.setup().setDestinations({t7_, "/media/gone", raid_});
  first.setup().set(&Options::preset, {"{project}/{card}"});
  first.setup().set(&Options::project, "Ärger, \"quoted\"");
  first.setup().set(&Options::algorithm, HashKit::HashAlgorithm::md5);
  first.setup().set(&Options::verifySource, false);
  first.setup().set(&Options::ejectWhenDone, true);
  first.setup().set(&Options::saveCardImage, true);

  OffloadModel& second = makeModel();
  EXPECT_EQ(second.setup().options().preset.templateText, "{project}/{card}");
  EXPECT_EQ(second.setup().options().project, "Ärger, \"quoted\"");
  EXPECT_EQ(second.setup().options().algorithm, HashKit::HashAlgorithm::md5);
  EXPECT_FALSE(second.setup().options().verifySource);
  EXPECT_TRUE(second.setup().options().ejectWhenDone);
  EXPECT_TRUE(second.setup().options().saveCardImage);
  ASSERT_TRUE(waitUntil([&] { return second.setup().destinations().size() == 2; }));
  EXPECT_THAT(second.setup().destinations(), ElementsAre(t7_, raid_));
  // The shortened list is not saved before the next change.
  EXPECT_EQ(Settings(settingsPath()).load().destinations.size(), 3);
  second.setup().set(&Options::project, "");
  EXPECT_EQ(Settings(settingsPath()).load().destinations.size(), 2);
}

TEST_F(OffloadModelTests, ADeadVolumeKeepsNobodyWaiting) {
  addCard(card_, 3, 100);
  addDrive("/net/dead", 1, 6);
  disks_->change([](FakeDiskQueries& disks) { disks.dead_.insert("/net/dead"); });
  OffloadModel& model = makeModel();
  model.setup().addDestination("/net/dead");
  ASSERT_TRUE(
      waitUntil([&] { return model.setup().drives().size() == 4 && model.setup().hasSource(); }));
  ASSERT_TRUE(waitUntil([&] { return model.setup().source()->count.files == 3; }));
  EXPECT_EQ(model.setup().drives()[3].capacity, 0);
  EXPECT_EQ(model.blocker(), "Waiting for dead to answer…");
  EXPECT_FALSE(model.setup().destinationFacts(0));
  model.start();
  EXPECT_TRUE(is<Choosing>(model.stage()));
  for (int i = 0; i < 50; ++i) model.setup().refresh();

  disks_->revive();
  ASSERT_TRUE(waitUntil([&] { return model.setup().drives()[3].capacity == 2; }));
  ASSERT_TRUE(
      waitUntil([&] { return model.blocker() == "dead doesn't have room for this card."; }));
}

TEST_F(OffloadModelTests, AnotherCardInTheSamePlaceIsAnotherSource) {
  addCard(card_, 3, 100);
  OffloadModel& model = makeReadyModel();
  disks_->change([&](FakeDiskQueries& disks) {
    disks.sources_[card_].disk = DeviceKit::WholeDisk{"sdd", "/dev/sdd", 64'000'000'000};
    disks.counts_[card_] = {9, 900};
  });
  watcher_->fire();
  ASSERT_TRUE(waitUntil([&] { return model.setup().source()->count.files == 9; }));
  EXPECT_EQ(model.setup().source()->facts.disk->rawPath, "/dev/sdd");
}

TEST_F(OffloadModelTests, WhatIsChosenNowNeedNotExistYet) {
  makeModel().setup().setDestinations({t7_, raid_ / "new"});
  // As on the command line, at the next launch.
  OffloadModel& model = makeModel();
  model.setup().setDestinations({t7_ / "", raid_ / "new"});
  ASSERT_TRUE(waitUntil([&] { return model.setup().destinationFacts(1).has_value(); }));
  EXPECT_FALSE(model.setup().destinationFacts(1)->exists);
  EXPECT_THAT(model.setup().destinations(), ElementsAre(t7_, raid_ / "new"));
  model.setup().addDestination(t7_ / ".." / "T7" / "");
  EXPECT_EQ(model.setup().destinations().size(), 2);

  disks_->change([](FakeDiskQueries& disks) { disks.gone_.insert("/a/file"); });
  model.takeFolder("/a/file", true);
  model.takeFolder("/a/folder", true);
  ASSERT_TRUE(waitUntil([&] { return model.setup().hasSource(); }));
  EXPECT_EQ(model.setup().source()->path, "/a/folder");
}

TEST_F(OffloadModelTests, EventsBehindTheModelsEndAreDropped) {
  OffloadModel& model = makeModel();
  int lists = 0;
  QObject::connect(&model.setup(), &OffloadSetup::volumesChanged, [&] { ++lists; });
  ASSERT_TRUE(waitUntil([&] { return lists == 1; }));
  watcher_->fire();
  model_.reset();
  watcher_->fire();
  QCoreApplication::processEvents();
  EXPECT_EQ(lists, 1);
}

}  // namespace
}  // namespace ZephrimarkOffload
