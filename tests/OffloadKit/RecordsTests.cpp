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

  // Each is added to the one before.
  const std::pair<Finding, void (*)(OffloadResult&)> faults[] = {
      {Finding::recordMissing,
       [](OffloadResult& result) {
         result.missingRecords = {{MissingRecord::Kind::report, 0, because("x")}};
       }},
      {Finding::imageIncomplete, [](OffloadResult& result) { result.plan.cardImage.emplace(); }},
      {Finding::imageIncomplete,
       [](OffloadResult& result) {
         result.cardImage.emplace().outcome = CardImageResult::Outcome::verified();
         result.cardImage->unreadableBlocks = 1;
       }},
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
}

}  // namespace
}  // namespace OffloadKit
