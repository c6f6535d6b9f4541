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
    EXPECT_TRUE(waitUntil([&] { return urlsOf(model.cards()) == cards; }));
  }
};

TEST_F(OffloadModelTests, TheOnlyCardIsTakenAndFollowed) {
  OffloadModel& model = makeModel();
  EXPECT_EQ(model.blocker(), "Choose a card to offload.");
  ASSERT_TRUE(waitUntil([&] { return model.drives().size() == 2; }));
  EXPECT_FALSE(model.source());

  addCard(card_, 1204, 64'200'000'000);
  fireAndWaitFor(model, {card_});
  EXPECT_EQ(model.source(), card_);
  EXPECT_EQ(model.blocker(), "Add at least one drive to copy to.");
  ASSERT_TRUE(waitUntil([&] { return model.sourceFileCount() == 1204; }));
  EXPECT_EQ(model.sourceName(), "A001");
  EXPECT_EQ(model.camera(), "Canon");
  EXPECT_EQ(model.sourceSize(), 64'200'000'000);
  EXPECT_EQ(model.cards().front().capacity, 128'000'000'000);
  EXPECT_EQ(model.folderName(), "2026-10-07/A001");

  // A second card changes nothing; when the first is pulled, the one that is left is taken.
  addCard("/media/B002", 7, 7);
  fireAndWaitFor(model, {card_, "/media/B002"});
  EXPECT_EQ(model.source(), card_);
  questions_->change([&](FakeDiskQuestions& disks) {
    std::erase(disks.volumes_, cardVolume(card_));
    disks.gone_.insert(card_);
  });
  fireAndWaitFor(model, {"/media/B002"});
  ASSERT_TRUE(waitUntil([&] { return model.sourceFileCount() == 7; }));
  EXPECT_EQ(model.source(), "/media/B002");

  // The last one goes.
  questions_->change([&](FakeDiskQuestions& disks) {
    std::erase(disks.volumes_, cardVolume("/media/B002"));
    disks.gone_.insert("/media/B002");
  });
  fireAndWaitFor(model, {});
  EXPECT_FALSE(model.source());
  EXPECT_EQ(model.sourceName(), "");
  EXPECT_EQ(model.sourceSize(), 0);
  EXPECT_EQ(model.camera(), "Canon");
}

TEST_F(OffloadModelTests, DestinationsAreThreeAtMostAndOfferedOnce) {
  addDrive("/media/SSD", 1'000, 4);
  addDrive("/media/X", 1'000, 5);
  OffloadModel& model = makeModel();
  ASSERT_TRUE(waitUntil([&] { return model.drives().size() == 4; }));
  questions_->change([&](FakeDiskQuestions& disks) {
    auto facts = disks.destinations_[t7_];
    disks.destinations_[t7_ / "Footage"] = facts;
  });
  model.addDestination(t7_ / "Footage");
  model.addDestination(t7_ / "Footage");
  ASSERT_TRUE(waitUntil([&] { return model.destinationFacts(0).has_value(); }));
  EXPECT_THAT(urlsOf(model.suggestedDrives()), ElementsAre(raid_, "/media/SSD", "/media/X"));
  model.setSource(raid_);
  EXPECT_THAT(urlsOf(model.suggestedDrives()), ElementsAre("/media/SSD", "/media/X"));
  model.addDestination("/media/SSD");
  model.addDestination("/media/X");
  model.addDestination(raid_);
  EXPECT_THAT(model.destinations(), ElementsAre(t7_ / "Footage", "/media/SSD", "/media/X"));
  EXPECT_THAT(model.plannedFolders(),
              ElementsAre(t7_ / "Footage/2026-10-07/RAID", "/media/SSD/2026-10-07/RAID",
                          "/media/X/2026-10-07/RAID"));
  model.removeDestination("/media/SSD");
  EXPECT_THAT(model.destinations(), ElementsAre(t7_ / "Footage", "/media/X"));
  EXPECT_FALSE(model.onlyInternalCopies());
}

TEST_F(OffloadModelTests, ACardImageNeedsAWholeCardAndGoesWhereMostIsFree) {
  addCard(card_, 3, 100);
  OffloadModel& model = makeReadyModel();
  EXPECT_FALSE(model.imageRequest());
  model.setSaveCardImage(true);
  ASSERT_TRUE(model.imageRequest());
  EXPECT_EQ(model.imageRequest()->devicePath, "/dev/sdc");
  EXPECT_EQ(model.imageRequest()->destinationIndex, 0);  // of equal ones the first
  EXPECT_EQ(model.imageRequest()->size, 128'000'000'000);

  questions_->change([&](FakeDiskQuestions& disks) {
    disks.destinations_[t7_].freeSpace = 90'000'000'000;
    disks.destinations_[raid_].freeSpace = 128'000'000'099;
  });
  model.refreshVolumes();
  ASSERT_TRUE(waitUntil([&] { return model.imageDestinationIndex() == 1; }));
  ASSERT_TRUE(waitUntil([&] {
    return model.blocker() == "RAID doesn't have room for this card and its card image.";
  }));
  EXPECT_EQ(model.stepStatus(), "RAID doesn't have room for this card and its card image.");
  model.setSource("/home/u/folder");
  EXPECT_FALSE(model.cardDisk());
  EXPECT_FALSE(model.imageRequest());
}

TEST_F(OffloadModelTests, ChoicesSurviveALaunchAndWhatIsGoneIsDropped) {
  OffloadModel& first = makeModel();
  first.setDestinations({t7_, "/media/gone", raid_});
  first.setPreset({"{project}/{card}"});
  first.setProject("Ärger, \"quoted\"");
  first.setAlgorithm(HashKit::HashAlgorithm::md5);
  first.setVerifySource(false);
  first.setEjectWhenDone(true);
  first.setSaveCardImage(true);

  OffloadModel& second = makeModel();
  EXPECT_EQ(second.preset().templateText, "{project}/{card}");
  EXPECT_EQ(second.project(), "Ärger, \"quoted\"");
  EXPECT_EQ(second.algorithm(), HashKit::HashAlgorithm::md5);
  EXPECT_FALSE(second.verifySource());
  EXPECT_TRUE(second.ejectWhenDone());
  EXPECT_TRUE(second.saveCardImage());
  ASSERT_TRUE(waitUntil([&] { return second.destinations().size() == 2; }));
  EXPECT_THAT(second.destinations(), ElementsAre(t7_, raid_));
  // The shortened list is not saved before the next change.
  EXPECT_EQ(Settings(settingsPath()).load().destinations.size(), 3);
  second.setProject("");
  EXPECT_EQ(Settings(settingsPath()).load().destinations.size(), 2);
}

TEST_F(OffloadModelTests, ADeadVolumeKeepsNobodyWaiting) {
  addCard(card_, 3, 100);
  addDrive("/net/dead", 1, 6);
  questions_->change([](FakeDiskQuestions& disks) { disks.dead_.insert("/net/dead"); });
  OffloadModel& model = makeModel();
  model.addDestination("/net/dead");
  ASSERT_TRUE(waitUntil([&] { return model.drives().size() == 4 && model.source(); }));
  ASSERT_TRUE(waitUntil([&] { return model.sourceFileCount() == 3; }));
  EXPECT_EQ(model.drives()[3].capacity, 0);
  EXPECT_EQ(model.blocker(), "Waiting for dead to answer…");
  EXPECT_FALSE(model.destinationFacts(0));
  model.start();
  EXPECT_EQ(model.stage().kind(), Stage::Kind::setup);
  for (int i = 0; i < 50; ++i) model.refreshVolumes();

  questions_->revive();
  ASSERT_TRUE(waitUntil([&] { return model.drives()[3].capacity == 2; }));
  ASSERT_TRUE(
      waitUntil([&] { return model.blocker() == "dead doesn't have room for this card."; }));
}

TEST_F(OffloadModelTests, AnotherCardInTheSamePlaceIsAnotherSource) {
  addCard(card_, 3, 100);
  OffloadModel& model = makeReadyModel();
  questions_->change([&](FakeDiskQuestions& disks) {
    disks.sources_[card_].disk = DeviceKit::WholeDisk{"sdd", "/dev/sdd", 64'000'000'000};
    disks.counts_[card_] = {9, 900};
  });
  watcher_->fire();
  ASSERT_TRUE(waitUntil([&] { return model.sourceFileCount() == 9; }));
  EXPECT_EQ(model.cardDisk()->rawPath, "/dev/sdd");
}

TEST_F(OffloadModelTests, WhatIsChosenNowNeedNotExistYet) {
  makeModel().setDestinations({t7_, raid_ / "new"});
  // As on the command line, at the next launch.
  OffloadModel& model = makeModel();
  model.setDestinations({t7_ / "", raid_ / "new"});
  ASSERT_TRUE(waitUntil([&] { return model.destinationFacts(1).has_value(); }));
  EXPECT_FALSE(model.destinationFacts(1)->exists);
  EXPECT_THAT(model.destinations(), ElementsAre(t7_, raid_ / "new"));
  model.addDestination(t7_ / ".." / "T7" / "");
  EXPECT_EQ(model.destinations().size(), 2);

  questions_->change([](FakeDiskQuestions& disks) { disks.gone_.insert("/a/file"); });
  model.takeFolder("/a/file", true);
  model.takeFolder("/a/folder", true);
  ASSERT_TRUE(waitUntil([&] { return model.source().has_value(); }));
  EXPECT_EQ(model.source(), "/a/folder");
}

TEST_F(OffloadModelTests, EventsBehindTheModelsEndAreDropped) {
  OffloadModel& model = makeModel();
  int lists = 0;
  QObject::connect(&model, &OffloadModel::volumesChanged, [&] { ++lists; });
  ASSERT_TRUE(waitUntil([&] { return lists == 1; }));
  watcher_->fire();
  model_.reset();
  watcher_->fire();
  QCoreApplication::processEvents();
  EXPECT_EQ(lists, 1);
}

}  // namespace
}  // namespace ZephrimarkOffload
