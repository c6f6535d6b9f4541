// Whole offloads through the model: the real engine on real folders, with an event loop and no
// window.

#include "Composition/Machine.h"
#include "OffloadKit/Records/OffloadError.h"
#include "tests/Model/ModelFixture.h"

#include <atomic>

namespace ZephrimarkOffload {
namespace {

using PlatformKit::Testing::pattern;
using PlatformKit::Testing::writeFile;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class ModelRunTests : public ModelFixture {
 protected:
  ModelRunTests() {
    writeFile(source_ / "DCIM/A.MOV", pattern(3'000'000, 1));
    writeFile(source_ / "DCIM/B.MOV", pattern(100, 2));
    std::filesystem::create_directories(a_);
    std::filesystem::create_directories(b_);
    disks_->change([&](FakeDiskQueries& disks) {
      disks.sources_[source_] = {"A001", "Camera", true, {}, {}};
      disks.counts_[source_] = {2, 3'000'100};
      for (const Path& drive : {a_, b_}) {
        disks.destinations_[drive] = {true,       false, drive.filename().native(),
                                      1ULL << 40, {},    drive};
      }
    });
    makeRunner_ = [this] {
      return std::make_unique<EngineRunner>(machine_.platform(), rawAccess_, machine_.disks());
    };
  }

  OffloadModel& makeModelOnFolders() {
    OffloadModel& model = makeModel();
    model.setup().set(&Options::preset, {"{card}"});
    model.setup().setSource(source_);
    model.setup().setDestinations({a_, b_});
    EXPECT_TRUE(waitUntil([&] { return !model.blocker(); })) << model.blocker().value_or("");
    return model;
  }

  static bool waitForEnd(const OffloadModel& model) {
    return waitUntil([&] { return !is<Running>(model.stage()); });
  }

  const Path source_ = folder_.path() / "card";
  const Path a_ = folder_.path() / "T7";
  const Path b_ = folder_.path() / "RAID";
  Composition::Machine machine_;
  PlatformKit::Testing::FakeRawDevices raw_;
  DeviceKit::RawDeviceAccess rawAccess_{raw_, {}};
};

TEST_F(ModelRunTests, AnOffloadIsVerifiedToldAndEjected) {
  OffloadModel& model = makeModelOnFolders();
  EXPECT_EQ(model.step(), 2);
  EXPECT_EQ(model.stepStatus(), "Ready. Check the folder name, then press Start Offload.");
  model.setup().set(&Options::ejectWhenDone, true);
  double badge = 0;
  QObject::connect(&model, &OffloadModel::progressChanged,
                   [&] { badge = std::max(badge, desktop_.badge_.value_or(0)); });
  model.start();
  EXPECT_TRUE(is<Running>(model.stage()));
  EXPECT_TRUE(desktop_.isSleepInhibited_);
  EXPECT_EQ(model.stepStatus(), "Copying A001 to 2 drives. Keep everything connected.");
  model.start();  // one at a time

  ASSERT_TRUE(waitForEnd(model));
  ASSERT_TRUE(is<Done>(model.stage()));
  EXPECT_TRUE(std::get<Done>(model.stage()).result->allVerified());
  EXPECT_EQ(badge, 1);
  EXPECT_FALSE(desktop_.badge_);
  EXPECT_FALSE(desktop_.isSleepInhibited_);
  EXPECT_THAT(desktop_.calls_,
              ElementsAre("inhibit Copying A001", "permission",
                          "notify Offload verified | A001: 2 files, 3 MB, checked on 2 drives."));
  EXPECT_EQ(model.step(), 4);
  ASSERT_TRUE(waitUntil([&] { return !model.ejection().message().empty(); }));
  EXPECT_THAT(disks_->ejected_, ElementsAre(source_));
  EXPECT_EQ(model.ejection().message(), "Ejected A001. You can take it out now.");
  for (const Path& drive : {a_, b_}) {
    EXPECT_EQ(PlatformKit::Testing::readFile(drive / "A001/DCIM/A.MOV"), pattern(3'000'000, 1));
    EXPECT_TRUE(std::filesystem::exists(drive / "A001/ascmhl/ascmhl_chain.xml"));
  }
  model.showSetup();
  EXPECT_TRUE(is<Choosing>(model.stage()));
  EXPECT_EQ(model.setup().source()->path, source_);
}

TEST_F(ModelRunTests, StopGoesBackToTheSameChoices) {
  OffloadModel& model = makeModelOnFolders();
  QObject::connect(&model, &OffloadModel::stageChanged, [&] {
    // Before its first file: the run must end as stopped, whatever it did by then.
    if (is<Running>(model.stage())) model.cancel();
  });
  model.start();
  ASSERT_TRUE(waitForEnd(model));
  EXPECT_TRUE(is<Choosing>(model.stage()));
  EXPECT_EQ(model.setup().source()->path, source_);
  EXPECT_THAT(model.setup().destinations(), ElementsAre(a_, b_));
  EXPECT_FALSE(desktop_.isSleepInhibited_);
  EXPECT_EQ(desktop_.calls_.size(), 2);  // nothing is told
}

TEST_F(ModelRunTests, AFailedFileKeepsTheCardInAndTryAgainRepairs) {
  OffloadModel& model = makeModelOnFolders();
  model.setup().set(&Options::ejectWhenDone, true);
  writeFile(b_ / "A001/DCIM/B.MOV", "someone else's");
  model.start();
  ASSERT_TRUE(waitForEnd(model));
  ASSERT_TRUE(is<Done>(model.stage()));
  EXPECT_EQ(desktop_.calls_.back(),
            "notify Offload finished with problems | A001: 1 file(s) weren't verified on every "
            "drive.");
  EXPECT_EQ(model.stepStatus(),
            "Some files weren't verified on every drive. Don't format the card yet.");
  std::filesystem::remove(b_ / "A001/DCIM/B.MOV");
  EXPECT_THAT(disks_->ejected_, ::testing::IsEmpty());

  model.tryAgain();
  EXPECT_TRUE(is<Running>(model.stage()));
  ASSERT_TRUE(waitForEnd(model));
  EXPECT_TRUE(std::get<Done>(model.stage()).result->allVerified());
  EXPECT_TRUE(std::get<Done>(model.stage()).result->files[0].outcomes[0].isResumed());
  EXPECT_TRUE(waitUntil(
      [&] { return !model.ejection().isGoingOn() && !model.ejection().message().empty(); }));
}

TEST_F(ModelRunTests, AFailedStartSaysWhy) {
  OffloadModel& model = makeModelOnFolders();
  std::filesystem::remove_all(source_);
  model.start();
  ASSERT_TRUE(waitForEnd(model));
  ASSERT_TRUE(is<Failed>(model.stage()));
  EXPECT_THAT(std::get<Failed>(model.stage()).message, HasSubstr("The card couldn't be read"));
  EXPECT_EQ(model.stepStatus(), "The offload couldn't start. See the message below.");
  EXPECT_FALSE(desktop_.isSleepInhibited_);
  EXPECT_FALSE(desktop_.badge_);
  model.showSetup();
  EXPECT_TRUE(is<Choosing>(model.stage()));
}

/// Answers what it is told to, at once or when it is cancelled.
class ScriptedRunner final : public OffloadRunner {
 public:
  ScriptedRunner(OffloadKit::OffloadResult result, bool waits)
      : result_(std::move(result)), waits_(waits) {}
  OffloadKit::OffloadResult run(const OffloadKit::OffloadPlan& plan,
                                const OffloadKit::ProgressCallback& progress) override {
    OffloadKit::OffloadProgress report;
    for (int i = 1; i <= 1000; ++i) {
      report.fraction = i / 1000.0;
      progress(report);
    }
    while (waits_ && !cancelled_) std::this_thread::yield();
    if (waits_) throw OffloadKit::OffloadError::cancelled();
    result_.plan = plan;
    return result_;
  }
  void cancel() override { cancelled_ = true; }

 private:
  OffloadKit::OffloadResult result_;
  bool waits_;
  std::atomic<bool> cancelled_ = false;
};

TEST_F(ModelRunTests, ACardStaysWhileItsImageOrARecordIsMissing) {
  OffloadKit::OffloadResult results[3];
  results[0].cardImage.emplace();
  results[1].missingRecords = {
      {OffloadKit::MissingRecord::Kind::hashList, 0, because("The drive is full")}};
  for (const auto& result : results) {
    makeRunner_ = [&] { return std::make_unique<ScriptedRunner>(result, false); };
    OffloadModel& model = makeModelOnFolders();
    model.setup().set(&Options::ejectWhenDone, true);
    model.start();
    ASSERT_TRUE(waitForEnd(model));
    const bool stays = &result != &results[2];
    EXPECT_TRUE(waitUntil([&] { return stays || !model.ejection().message().empty(); }));
    EXPECT_EQ(model.ejection().isGoingOn() || !model.ejection().message().empty(), !stays);
  }
}

TEST_F(ModelRunTests, WhatCouldNotBeReadKeepsTheCardInAndEjectFailuresAreTold) {
  OffloadModel& model = makeModelOnFolders();
  model.setup().set(&Options::ejectWhenDone, true);
  OffloadKit::OffloadResult result;
  result.unreadable = {{"DCIM/BAD", because("Input/output error")}};
  makeRunner_ = [&] { return std::make_unique<ScriptedRunner>(result, false); };
  OffloadModel& partly = makeModelOnFolders();
  partly.start();
  ASSERT_TRUE(waitForEnd(partly));
  EXPECT_EQ(desktop_.calls_.back(),
            "notify Offload finished with problems | A001: 1 item(s) "
            "couldn't be read from the card.");
  EXPECT_EQ(partly.stepStatus(), "Some of the card couldn't be read. Don't format the card yet.");
  EXPECT_FALSE(partly.ejection().isGoingOn());

  disks_->change([](FakeDiskQueries& disks) { disks.ejectFailure_ = because("It is busy."); });
  partly.showSetup();
  partly.eject(source_);
  EXPECT_EQ(partly.blocker(), "Ejecting the card…");
  partly.start();
  EXPECT_TRUE(is<Choosing>(partly.stage()));
  ASSERT_TRUE(waitUntil([&] { return !partly.ejection().isGoingOn(); }));
  EXPECT_EQ(partly.ejection().message(), "It is busy.");
}

TEST_F(ModelRunTests, AnotherCardIsNeitherEjectedNorImaged) {
  makeRunner_ = [] { return std::make_unique<ScriptedRunner>(OffloadKit::OffloadResult{}, false); };
  OffloadModel& model = makeModelOnFolders();
  model.setup().set(&Options::ejectWhenDone, true);
  model.start();
  // Taken out and put back, or another one: nobody can tell.
  model.setup().setSource({});
  model.setup().setSource(source_);
  ASSERT_TRUE(waitForEnd(model));
  EXPECT_FALSE(model.isSourceOf(*model.run()));
  EXPECT_FALSE(model.ejection().isGoingOn());
  model.tryAgain();
  EXPECT_TRUE(is<Choosing>(model.stage()));

  OffloadKit::OffloadPlan plan;
  plan.source = source_;
  plan.cardImage = OffloadKit::CardImageRequest{"/dev/none", 0, 1};
  EXPECT_THROW(
      EngineRunner(machine_.platform(), rawAccess_, machine_.disks()).run(plan, [](const auto&) {}),
      OffloadKit::OffloadError);
}

TEST_F(ModelRunTests, TheEndOfTheModelStopsTheRun) {
  makeRunner_ = [] { return std::make_unique<ScriptedRunner>(OffloadKit::OffloadResult{}, true); };
  OffloadModel& model = makeModelOnFolders();
  model.start();
  ASSERT_TRUE(waitUntil([&] { return desktop_.badge_ == 1; }));
  model_.reset();
  EXPECT_FALSE(desktop_.isSleepInhibited_);
  EXPECT_FALSE(desktop_.badge_);
}

}  // namespace
}  // namespace ZephrimarkOffload
