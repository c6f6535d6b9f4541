#include "OffloadKit/Wording/ProgressTexts.h"
#include "OffloadKit/Wording/ResultTexts.h"
#include "ZephrimarkOffload/Model/Notice.h"
#include "ZephrimarkOffload/Model/Readiness.h"
#include "ZephrimarkOffload/Model/SetupTexts.h"
#include "ZephrimarkOffload/Model/StepTexts.h"
#include "tests/Because.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ZephrimarkOffload {
namespace {

using OffloadKit::OffloadProgress;
using OffloadKit::OffloadResult;
using Phase = OffloadProgress::Phase;
using Outcome = OffloadKit::OffloadedFile::Outcome;

OffloadResult resultOf(std::size_t files, std::size_t failed, std::size_t drives) {
  OffloadResult result;
  result.plan.sourceName = "A001";
  for (std::size_t i = 0; i < drives; ++i) {
    result.plan.destinations.push_back("/media/" + std::to_string(i));
  }
  for (std::size_t i = 0; i < files; ++i) {
    OffloadKit::OffloadedFile file;
    file.file.relativePath = "F" + std::to_string(i);
    file.file.size = 1'000'000;
    file.outcomes.assign(drives, Outcome::verified(false));
    if (i < failed) file.outcomes.back() = Outcome::failed(because("The drive is full"));
    result.files.push_back(std::move(file));
  }
  return result;
}

TEST(ReadinessTests, TheFirstReasonCounts) {
  constexpr std::uint64_t kGB = 1'000'000'000;
  OffloadKit::PlanRequest request;
  SourceCount count;
  EXPECT_EQ(blocker(request, count), "Choose a card to offload.");
  request.source = "/card";
  EXPECT_EQ(blocker(request, count), "Add at least one drive to copy to.");
  request.destinations = {{{"/T7", {}, "T7"}, 100 * kGB}, {{"/RAID", {}, "RAID"}, 100 * kGB}};
  auto& t7 = request.destinations[0].freeSpace;
  auto& raid = request.destinations[1].freeSpace;
  EXPECT_EQ(blocker(request, count), "Reading the card…");
  count.files = 1;  // an empty one
  EXPECT_EQ(blocker(request, count), std::nullopt);
  count.bytes = 100 * kGB;
  EXPECT_EQ(blocker(request, count), std::nullopt);
  count.bytes += 1;
  EXPECT_EQ(blocker(request, count), "T7 doesn't have room for this card.");
  request.imageOf = {"/dev/sdc", 128 * kGB};
  EXPECT_EQ(blocker(request, count), "T7 doesn't have room for this card and its card image.");
  raid = 101 * kGB;
  EXPECT_EQ(blocker(request, count), "T7 doesn't have room for this card.");
  t7 = 100 * kGB + 1;
  EXPECT_EQ(blocker(request, count), "RAID doesn't have room for this card and its card image.");
  raid = 229 * kGB;
  EXPECT_EQ(blocker(request, count), std::nullopt);
  t7.reset();
  EXPECT_EQ(blocker(request, count), "Waiting for T7 to answer…");
  // A sum that does not fit must not become a small one.
  t7 = 1;
  request.imageOf->size = UINT64_MAX;
  raid = 230 * kGB;
  EXPECT_EQ(blocker(request, count), "T7 doesn't have room for this card.");
  t7 = 200 * kGB;
  EXPECT_EQ(blocker(request, count), "RAID doesn't have room for this card and its card image.");
}

TEST(StepTextsTests, EveryStageHasItsSentence) {
  const auto done = [](std::size_t failed) {
    return Done{std::make_shared<const OffloadResult>(resultOf(2, failed, 2))};
  };
  const auto running = [](Phase phase) {
    Running stage{OffloadProgress{}};
    stage.progress->phase = phase;
    return stage;
  };
  const struct {
    Stage stage;
    bool hasSource;
    std::size_t destinations;
    std::optional<std::string> blocker;
    int step;
    const char* status;
  } cases[] = {
      {done(0),
       true,
       2,
       {},
       4,
       "Every file is verified on every drive. Check the report before you format the card."},
      {done(1),
       true,
       2,
       {},
       4,
       "Some files weren't verified on every drive. Don't format the card yet."},
      {Failed{"x"}, true, 2, {}, 2, "The offload couldn't start. See the message below."},
      {running(Phase::finishing), true, 2, {}, 2, "Writing the report and checksums."},
      {running(Phase::imaging),
       true,
       2,
       {},
       2,
       "Saving the card image for Kestrine, then checking it."},
      {running(Phase::verifying),
       true,
       2,
       {},
       2,
       "Reading every copy back from the drives and comparing it with the card."},
      {running(Phase::copying),
       true,
       1,
       {},
       2,
       "Copying A001 to 1 drive. Keep everything connected."},
      {Running{}, true, 3, {}, 2, "Copying A001 to 3 drives. Keep everything connected."},
      {Choosing{}, false, 2, "x", 0, "Insert a card, or choose a folder to offload."},
      {Choosing{}, true, 0, "x", 1, "Add the drives to copy to. Two is safer than one."},
      {Choosing{}, true, 1, "Reading the card…", 2, "Reading the card…"},
      {Choosing{}, true, 1, {}, 2, "Ready. Check the folder name, then press Start Offload."},
  };
  for (const auto& c : cases) {
    const StepFacts facts{c.stage, c.hasSource, "A001", c.destinations, c.blocker};
    EXPECT_EQ(stepStatus(facts), c.status);
    EXPECT_EQ(step(facts), c.step) << c.status;
  }
}

TEST(ProgressTextsTests, FiguresFollowTheReport) {
  using namespace OffloadKit::ProgressTexts;
  Progress progress;
  EXPECT_EQ(phase(progress, 2), "Reading the card…");
  EXPECT_EQ(speed(progress), "–");
  EXPECT_EQ(remaining(progress, 10), "Working it out…");
  progress.emplace();
  EXPECT_EQ(phase(progress, 2), "Reading the card…");
  EXPECT_EQ(speed(progress), "–");
  progress->phase = Phase::copying;
  progress->filesDone = 412;
  progress->filesTotal = 1204;
  progress->bytesPerSecond = 245'300'000.9;
  progress->fraction = 0.02;
  EXPECT_EQ(phase(progress, 1), "Copying to 1 drive and checking each copy");
  EXPECT_EQ(phase(progress, 2), "Copying to 2 drives and checking each copy");
  EXPECT_EQ(files(progress), "412 of 1204");
  EXPECT_EQ(speed(progress), "245.3 MB/s");
  EXPECT_EQ(remaining(progress, 10), "Working it out…");
  progress->fraction = 0.25;
  EXPECT_EQ(remaining(progress, 64), "About 3 min 12 s");
  progress->bytesPerSecond = 0.5;
  EXPECT_EQ(speed(progress), "Zero KB/s");
  EXPECT_EQ(drive({12, 2, because("The drive\nis full")}),
            "12 verified · 2 not verified: The drive\uFFFDis full");
}

TEST(SetupTextsTests, PlacesAndSizesReadWell) {
  using namespace SetupTexts;
  EXPECT_EQ(used(128'000'000'000, 63'800'000'000), "64.2 GB used of 128 GB");
  EXPECT_EQ(used(0, 0), "");
  EXPECT_EQ(used(5, 10), "Zero KB used of 5 bytes");
  EXPECT_EQ(sourceSummary({0, 0}, "Canon"), "Reading the card…");
  EXPECT_EQ(sourceSummary({1204, 64'200'000'000}, "Canon"), "1204 files · 64.2 GB · Canon");
  EXPECT_EQ(sourceSummary({1, 1}, "Camera"), "1 files · 1 byte");
  EXPECT_EQ(sourceDetail({}, "/home/u/Shoots/day\x1b[1m", "/home/u"), "~/Shoots/day\uFFFD[1m");
  EXPECT_EQ(sourceDetail({}, "/home/user2/x", "/home/u"), "/home/user2/x");

  DestinationFacts drive{true, false, "T7", 5, {}, "/media/T7"};
  EXPECT_EQ(destinationName(drive), "T7");
  EXPECT_EQ(placeOnDrive(drive, "/media/T7", "/home/u"), "Top level of the drive");
  EXPECT_EQ(placeOnDrive(drive, "/media/T7/", "/home/u"), "Top level of the drive");
  EXPECT_EQ(placeOnDrive(drive, "/media/T7/Footage/Day 1/", "/home/u"), "Footage/Day 1");
  EXPECT_EQ(placeOnDrive(drive, "/media/T70/a", "/home/u"), "media/T70/a");
  DestinationFacts internal{true, true, "debian", 5, {}, "/"};
  EXPECT_EQ(destinationName(internal), "This Computer");
  EXPECT_EQ(placeOnDrive(internal, "/home/u", "/home/u"), "~");
  EXPECT_EQ(placeOnDrive(internal, "/srv/x", "/"), "/srv/x");
}

TEST(ResultTextsTests, TheDoneScreensSentences) {
  using namespace OffloadKit::ResultTexts;
  OffloadResult result = resultOf(1204, 0, 2);
  result.finished = result.started + std::chrono::seconds(125);
  EXPECT_EQ(title(result), "Offload verified");
  EXPECT_EQ(sentence(result),
            "Every file from A001 was copied and read back identical on both drives.");
  EXPECT_EQ(files(result), "1,204 · 1.2 GB");
  EXPECT_EQ(took(result), "2 min 5 s · 9.6 MB/s");
  EXPECT_EQ(checksum(result), "XXH64, card read twice");
  EXPECT_EQ(drive(result, 0), "1204 of 1204 verified");
  EXPECT_EQ(sentence(resultOf(1, 0, 1)),
            "Every file from A001 was copied and read back identical on the drive.");
  EXPECT_EQ(sentence(resultOf(1, 0, 3)),
            "Every file from A001 was copied and read back identical on all 3 drives.");

  result.cardImage.emplace();
  result.cardImage->size = 1'296'000'000;
  EXPECT_EQ(took(result), "2 min 5 s · 20 MB/s");
  result.finished = result.started;
  EXPECT_EQ(took(result), "0 s · Zero KB/s");
  result.cardImage->outcome = OffloadKit::CardImageResult::Outcome::verified();
  result.cardImage->unreadableBlocks = 3;
  EXPECT_EQ(cardImage(*result.cardImage),
            "1.3 GB verified · 3 unreadable blocks saved as zeros · open it in Zephrimark Kestrine "
            "to look for deleted files");
  EXPECT_EQ(title(result), "Offload finished with problems");
  EXPECT_EQ(noticeOf(result).title, title(result));

  OffloadResult partly = resultOf(50, 45, 3);
  partly.destinationErrors.emplace(2, because("The drive is full"));
  EXPECT_EQ(title(partly), "Some files weren't verified");
  EXPECT_EQ(sentence(partly),
            "45 files didn't make it onto every drive. Don't erase the card yet.");
  EXPECT_EQ(sentence(resultOf(3, 1, 1)),
            "1 file didn't make it onto every drive. Don't erase the card yet.");
  partly.readThroughCache.insert(0);
  EXPECT_THAT(drive(partly, 0),
              testing::EndsWith("verified · read back through this computer's cache"));
  EXPECT_EQ(drive(partly, 2), "5 of 50 verified · stopped: The drive is full");
  EXPECT_EQ(failedFile(*partly.failedFiles()[0]), "F0: The drive is full");
  const auto lines = capped(std::vector<std::string>(45, "x"), 30);
  EXPECT_EQ(lines.size(), 31);
  EXPECT_EQ(lines.back(), "…and 15 more, listed in the report.");
  EXPECT_EQ(capped(std::vector<std::string>(30, "x"), 30).size(), 30);

  EXPECT_EQ(noticeOf(resultOf(1, 0, 1)).body, "A001: 1 files, 1 MB, checked on 1 drive.");
  EXPECT_EQ(noticeOf(partly).body, "A001: 45 file(s) weren't verified on every drive.");
}

}  // namespace
}  // namespace ZephrimarkOffload
