#include "OffloadKit/Records/OffloadError.h"
#include "OffloadKit/Records/Verdict.h"
#include "tests/Because.h"

#include <gtest/gtest.h>

namespace OffloadKit {
namespace {

using Outcome = OffloadedFile::Outcome;

OffloadedFile fileOf(std::uint64_t size, std::vector<Outcome> outcomes) {
  SourceFile file;
  file.relativePath = std::to_string(size);
  file.size = size;
  return {file, std::nullopt, std::move(outcomes)};
}

TEST(OffloadResult, sumsUpWhatHappenedToItsFiles) {
  OffloadResult result;
  EXPECT_TRUE(result.allVerified());
  EXPECT_EQ(result.totalBytes(), 0U);

  result.files = {
      fileOf(10, {Outcome::verified(true), Outcome::failed(because("The drive is full"))}),
      fileOf(5, {Outcome::verified(false), Outcome::verified(false)}),
      fileOf(7, {Outcome::failed(because("x")), Outcome::failed(because("x"))})};
  EXPECT_FALSE(result.allVerified());
  EXPECT_EQ(result.totalBytes(), 22U);
  EXPECT_EQ(result.verifiedCount(0), 2U);
  EXPECT_EQ(result.verifiedCount(1), 1U);
  const auto failed = result.failedFiles();
  ASSERT_EQ(failed.size(), 2U);
  EXPECT_EQ(failed[0]->file.size, 10U);
  EXPECT_EQ(failed[1]->file.size, 7U);
}

TEST(Verdict, isGoodOnlyWhereNothingThatWasAskedForIsMissing) {
  using Finding = Verdict::Finding;
  OffloadResult good;
  good.plan.destinations = {"/one", "/two"};
  good.files = {fileOf(1, {Outcome::verified(false), Outcome::verified(true)})};
  good.readThroughCache = {1};
  EXPECT_EQ(Verdict(good).worst(), Finding::throughCache);
  EXPECT_TRUE(Verdict(good).isGood() && Verdict(good).mayEject());

  CardImageResult withHoles;
  withHoles.outcome = CardImageResult::Outcome::verified();
  withHoles.unreadableBlocks = 1;
  // Each is added to the one before.
  const std::pair<Finding, void (*)(OffloadResult&)> faults[] = {
      {Finding::recordMissing,
       [](OffloadResult& result) {
         result.missingRecords = {{MissingRecord::Kind::report, 0, because("x")}};
       }},
      {Finding::imageIncomplete, [](OffloadResult& result) { result.plan.cardImage.emplace(); }},
      {Finding::cardUnreadable,
       [](OffloadResult& result) {
         result.unreadable = {{"a", because("x")}};
       }},
      {Finding::notVerified,
       [](OffloadResult& result) { result.files[0].outcomes[1] = Outcome::failed(because("x")); }},
  };
  OffloadResult worse = good;
  for (const auto& [finding, spoil] : faults) {
    OffloadResult alone = good;
    spoil(alone);
    spoil(worse);
    for (const Verdict& verdict : {Verdict(alone), Verdict(worse)}) {
      EXPECT_EQ(verdict.worst(), finding);
      EXPECT_FALSE(verdict.isGood() || verdict.mayEject());
    }
  }
  EXPECT_TRUE(Verdict(worse).isVerifiedOn(0) && !Verdict(worse).isVerifiedOn(1));
  good.cardImage = withHoles;
  EXPECT_EQ(Verdict(good).worst(), Finding::imageIncomplete);
}

TEST(OffloadError, speaksInFullSentences) {
  const std::pair<OffloadError, const char*> sentences[] = {
      {OffloadError::sourceUnreadable(Reason(Reason::Kind::filesNotListed)),
       "The card couldn't be read: couldn't list its files"},
      {OffloadError::destinationOnSource("T7 (A001)"),
       "T7 (A001) is on the card itself. Choose a different drive."},
      {OffloadError::destinationUnavailable("T7 (A001)"),
       "T7 (A001) isn't available or can't be written to."},
      {OffloadError::notEnoughSpace("T7 (Shoot)", 64'200'000'000, 12'300'000'000),
       "T7 (Shoot) needs 64.2 GB free but has 12.3 GB."},
      {OffloadError::cardImageUnavailable(because("It is asleep.")),
       "The card couldn't be opened for the card image: It is asleep. Turn off the card image to "
       "offload without it."},
      {OffloadError::noFiles(), "There are no files on the card to offload."},
      {OffloadError::cancelled(), "The offload was stopped."},
  };
  for (const auto& [error, sentence] : sentences) EXPECT_STREQ(error.what(), sentence);
  EXPECT_FALSE(OffloadError::notEnoughSpace("T7", 2, 1) ==
               OffloadError::notEnoughSpace("T7", 3, 1));
  EXPECT_TRUE(OffloadError::cancelled().isCancelled());
  EXPECT_FALSE(OffloadError::noFiles().isCancelled());
}

}  // namespace
}  // namespace OffloadKit
