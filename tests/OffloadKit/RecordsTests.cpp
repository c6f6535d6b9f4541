#include "OffloadKit/Records/OffloadError.h"
#include "OffloadKit/Records/OffloadResult.h"
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

TEST(Outcome, tellsResumedFromWrittenAndReasonsApart) {
  EXPECT_FALSE(Outcome::verified(true) == Outcome::verified(false));
  EXPECT_FALSE(Outcome::failed(because("a")) == Outcome::failed(because("b")));
  EXPECT_FALSE(Outcome::failed(because("")).isVerified());
  EXPECT_TRUE(Outcome::verified(true).isResumed());
  EXPECT_FALSE(Outcome::verified(false).isResumed());
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
