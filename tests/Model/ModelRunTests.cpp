// Whole offloads through the model: the real engine on real folders, with an event loop and no
// window.

#include "OffloadKit/Records/OffloadError.h"
#include "PlatformKit/Linux/LinuxDisks.h"
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
    questions_->change([&](FakeDiskQuestions& disks) {
      disks.sources_[source_] = {"A001", "Camera", true, {}, {}};
      disks.counts_[source_] = {2, 3'000'100};
      for (const Path& drive : {a_, b_}) {
        disks.destinations_[drive] = {true,       false, drive.filename().native(),
                                      1ULL << 40, {},    drive};
      }
    });
    makeRunner_ = [this] { return std::make_unique<EngineRunner>(system_, rawAccess_, disks_); };
  }

  OffloadModel& makeModelOnFolders() {
    OffloadModel& model = makeModel();
    model.setPreset({"{card}"});
    model.setSource(source_);
    model.setDestinations({a_, b_});
    EXPECT_TRUE(waitUntil([&] { return !model.blocker(); })) << model.blocker().value_or("");
    return model;
  }

  static bool waitForEnd(const OffloadModel& model) {
    return waitUntil([&] { return model.stage().kind() != Stage::Kind::running; });
  }

  const Path source_ = folder_.path() / "card";
  const Path a_ = folder_.path() / "T7";
  const Path b_ = folder_.path() / "RAID";
  PlatformKit::LinuxFileSystem fileSystem_;
  PlatformKit::LinuxVolumes volumes_;
  PlatformKit::SystemClock systemClock_;
  PlatformKit::System system_{fileSystem_, volumes_, systemClock_};
  PlatformKit::LinuxDisks disks_{volumes_};
  PlatformKit::Testing::FakeRawDevices raw_;
  DeviceKit::RawDeviceAccess rawAccess_{raw_, {}};
};

TEST_F(ModelRunTests, AnOffloadIsVerifiedToldAndEjected) {
  OffloadModel& model = makeModelOnFolders();
  EXPECT_EQ(model.step(), 2);
  EXPECT_EQ(model.stepStatus(), "Ready. Check the folder name, then press Start Offload.");
  model.setEjectWhenDone(true);
  double badge = 0;
  QObject::connect(&model, &OffloadModel::progressChanged,
                   [&] { badge = std::max(badge, desktop_.badge_.value_or(0)); });
  model.start();
  EXPECT_EQ(model.stage().kind(), Stage::Kind::running);
  EXPECT_TRUE(desktop_.isAwake_);
  EXPECT_EQ(model.stepStatus(), "Copying A001 to 2 drives. Keep everything connected.");
  model.start();  // one at a time

  ASSERT_TRUE(waitForEnd(model));
  ASSERT_EQ(model.stage().kind(), Stage::Kind::done) << model.stage().message();
  EXPECT_TRUE(model.stage().result()->allVerified());
  EXPECT_FALSE(model.progress());
  EXPECT_EQ(badge, 1);
  EXPECT_FALSE(desktop_.badge_);
  EXPECT_FALSE(desktop_.isAwake_);
  EXPECT_THAT(desktop_.calls_,
              ElementsAre("awake Copying A001", "permission",
                          "notify Offload verified | A001: 2 files, 3 MB, checked on 2 drives."));
  EXPECT_EQ(model.step(), 4);
  ASSERT_TRUE(waitUntil([&] { return !model.ejectMessage().empty(); }));
  EXPECT_THAT(questions_->ejected_, ElementsAre(source_));
  EXPECT_EQ(model.ejectMessage(), "Ejected A001. You can take it out now.");
  for (const Path& drive : {a_, b_}) {
    EXPECT_EQ(PlatformKit::Testing::readFile(drive / "A001/DCIM/A.MOV"), pattern(3'000'000, 1));
    EXPECT_TRUE(std::filesystem::exists(drive / "A001/ascmhl/ascmhl_chain.xml"));
  }
  model.showSetup();
  EXPECT_EQ(model.stage().kind(), Stage::Kind::setup);
  EXPECT_EQ(model.source(), source_);
}

TEST_F(ModelRunTests, StopGoesBackToTheSameChoices) {
  OffloadModel& model = makeModelOnFolders();
  QObject::connect(&model, &OffloadModel::stageChanged, [&] {
    // Before its first file: the run must end as stopped, whatever it did by then.
    if (model.stage().kind() == Stage::Kind::running) model.cancel();
  });
  model.start();
  ASSERT_TRUE(waitForEnd(model));
  EXPECT_EQ(model.stage().kind(), Stage::Kind::setup);
  EXPECT_EQ(model.source(), source_);
  EXPECT_THAT(model.destinations(), ElementsAre(a_, b_));
  EXPECT_FALSE(model.progress());
  EXPECT_FALSE(model.isStopping());
  EXPECT_FALSE(desktop_.isAwake_);
  EXPECT_EQ(desktop_.calls_.size(), 2);  // nothing is told
}

TEST_F(ModelRunTests, AFailedFileKeepsTheCardInAndTryAgainRepairs) {
  OffloadModel& model = makeModelOnFolders();
  model.setEjectWhenDone(true);
  writeFile(b_ / "A001/DCIM/B.MOV", "someone else's");
  model.start();
  ASSERT_TRUE(waitForEnd(model));
  ASSERT_EQ(model.stage().kind(), Stage::Kind::done);
  EXPECT_EQ(desktop_.calls_.back(),
            "notify Offload finished with problems | A001: 1 file(s) weren't verified on every "
            "drive.");
  EXPECT_EQ(model.stepStatus(),
            "Some files weren't verified on every drive. Don't format the card yet.");
  std::filesystem::remove(b_ / "A001/DCIM/B.MOV");
  EXPECT_THAT(questions_->ejected_, ::testing::IsEmpty());

  model.tryAgain();
  EXPECT_EQ(model.stage().kind(), Stage::Kind::running);
  ASSERT_TRUE(waitForEnd(model));
  EXPECT_TRUE(model.stage().result()->allVerified());
  EXPECT_TRUE(model.stage().result()->files[0].outcomes[0].isResumed());
  EXPECT_TRUE(waitUntil([&] { return !model.isEjecting() && !model.ejectMessage().empty(); }));
}

TEST_F(ModelRunTests, AFailedStartSaysWhy) {
  OffloadModel& model = makeModelOnFolders();
  std::filesystem::remove_all(source_);
  model.start();
  ASSERT_TRUE(waitForEnd(model));
  ASSERT_EQ(model.stage().kind(), Stage::Kind::failed);
  EXPECT_THAT(model.stage().message(), HasSubstr("The card couldn't be read"));
  EXPECT_EQ(model.stepStatus(), "The offload couldn't start. See the message below.");
  EXPECT_FALSE(desktop_.isAwake_);
  EXPECT_FALSE(desktop_.badge_);
  model.showSetup();
  EXPECT_EQ(model.stage().kind(), Stage::Kind::setup);
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
    model.setEjectWhenDone(true);
    model.start();
    ASSERT_TRUE(waitForEnd(model));
    const bool stays = &result != &results[2];
    EXPECT_TRUE(waitUntil([&] { return stays || !model.ejectMessage().empty(); }));
    EXPECT_EQ(model.isEjecting() || !model.ejectMessage().empty(), !stays);
  }
}

TEST_F(ModelRunTests, WhatCouldNotBeReadKeepsTheCardInAndEjectFailuresAreTold) {
  OffloadModel& model = makeModelOnFolders();
  model.setEjectWhenDone(true);
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
  EXPECT_FALSE(partly.isEjecting());

  questions_->change(
      [](FakeDiskQuestions& disks) { disks.ejectFailure_ = because("It is busy."); });
  partly.showSetup();
  partly.eject(source_);
  EXPECT_EQ(partly.blocker(), "Ejecting the card…");
  partly.start();
  EXPECT_EQ(partly.stage().kind(), Stage::Kind::setup);
  ASSERT_TRUE(waitUntil([&] { return !partly.isEjecting(); }));
  EXPECT_EQ(partly.ejectMessage(), "It is busy.");
}

TEST_F(ModelRunTests, AnotherCardIsNeitherEjectedNorImaged) {
  makeRunner_ = [] { return std::make_unique<ScriptedRunner>(OffloadKit::OffloadResult{}, false); };
  OffloadModel& model = makeModelOnFolders();
  model.setEjectWhenDone(true);
  model.start();
  // Taken out and put back, or another one: nobody can tell.
  model.setSource(std::nullopt);
  model.setSource(source_);
  ASSERT_TRUE(waitForEnd(model));
  EXPECT_FALSE(model.isSourceOfRun());
  EXPECT_FALSE(model.isEjecting());
  model.tryAgain();
  EXPECT_EQ(model.stage().kind(), Stage::Kind::setup);

  OffloadKit::OffloadPlan plan;
  plan.source = source_;
  plan.cardImage = OffloadKit::CardImageRequest{"/dev/none", 0, 1};
  EXPECT_THROW(EngineRunner(system_, rawAccess_, disks_).run(plan, [](const auto&) {}),
               OffloadKit::OffloadError);
}

TEST_F(ModelRunTests, TheEndOfTheModelStopsTheRun) {
  makeRunner_ = [] { return std::make_unique<ScriptedRunner>(OffloadKit::OffloadResult{}, true); };
  OffloadModel& model = makeModelOnFolders();
  model.start();
  ASSERT_TRUE(waitUntil([&] { return model.progress() && model.progress()->fraction == 1; }));
  EXPECT_EQ(desktop_.badge_, 1);
  model_.reset();
  EXPECT_FALSE(desktop_.isAwake_);
  EXPECT_FALSE(desktop_.badge_);
}

}  // namespace
}  // namespace ZephrimarkOffload
