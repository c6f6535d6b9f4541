#include "tests/OffloadKit/OffloadFixture.h"

#include <cerrno>
#include <numeric>

namespace OffloadKit {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using Phase = OffloadProgress::Phase;

class Closing : public OffloadFixture {
 protected:
  OffloadPlan planWithImage(std::size_t destination) {
    rawDevices_.add("/dev/card", pattern(4 * kChunk, 9));
    auto wanted = plan();
    wanted.cardImage = CardImageRequest{"/dev/card", destination, 4 * kChunk};
    return wanted;
  }
};

TEST_F(Closing, leavesReportThenHashListOnEveryDriveWithAVerifiedFile) {
  addFile("a", pattern(1000));
  addFile("b", pattern(1000));
  auto wanted = plan(3);
  fileSystem_.setScript(FaultyFileSystem::failing(Call::write, "drive2", EACCES));
  const auto result = run(wanted);
  ASSERT_EQ(result.reports.size(), 2U);
  ASSERT_EQ(result.mhlFiles.size(), 2U);
  EXPECT_EQ(result.reports[0].parent_path(), copies(1));
  EXPECT_EQ(result.reports[1].parent_path(), copies(3));
  EXPECT_THAT(tree(copies(2)), IsEmpty());
  const std::string list = readFile(result.mhlFiles[1]);
  EXPECT_THAT(list, HasSubstr(">" + result.reports[1].filename().native() + "</path>"));
  EXPECT_THAT(readFile(result.reports[1]), HasSubstr("<b>Drive 3</b> <span class=here>"));

  // The second run verifies what the first one listed, its report included.
  fileSystem_.setScript({});
  const std::string again = readFile(run(wanted).mhlFiles[0]);
  EXPECT_THAT(again, HasSubstr(">a</path>\n      <xxh64 action=\"verified\""));
  EXPECT_THAT(again, HasSubstr("<xxh64 action=\"original\""));  // the new report
}

TEST_F(Closing, savesTheImageAfterTheFilesAndListsItOnItsDriveOnly) {
  addFile("a", pattern(kChunk));
  std::vector<OffloadProgress> imaging;
  double last = 0;
  const auto result = OffloadEngine(system_, rawDeviceAccess_)
                          .run(planWithImage(1), [&](const OffloadProgress& progress) {
                            EXPECT_GE(progress.fraction, last);
                            last = progress.fraction;
                            if (progress.phase == Phase::imaging) imaging.push_back(progress);
                          });
  ASSERT_TRUE(result.cardImage && result.cardImage->outcome.isVerified());
  EXPECT_EQ(readFile(result.cardImage->url), pattern(4 * kChunk, 9));
  ASSERT_EQ(imaging.size(), 5U);
  EXPECT_EQ(imaging[0].currentFile, result.cardImage->url.filename());
  // Four units per byte of the file, two per byte of the image.
  EXPECT_DOUBLE_EQ(imaging[0].fraction, (4.0 + 1.0) / (4.0 + 8.0));
  EXPECT_DOUBLE_EQ(imaging[4].fraction, 1);
  EXPECT_THAT(readFile(result.mhlFiles[0]), Not(HasSubstr("Card Image/")));
  EXPECT_THAT(readFile(result.mhlFiles[1]), HasSubstr(">" + result.cardImage->relativePath + "<"));
  EXPECT_THAT(readFile(result.reports[0]), HasSubstr("<p>Drive 2: Card Image/"));
  EXPECT_EQ(rawDevices_.openDevices(), 0);
}

TEST_F(Closing, opensTheCardBeforeAnythingIsCopied) {
  addFile("a", pattern(kChunk));
  auto wanted = planWithImage(0);
  rawDevices_.add("/dev/card", pattern(512)).openError = EACCES;
  EXPECT_EQ(offloadErrorOf([&] { run(wanted); }),
            "The card couldn't be opened for the card image: Authorization to read /dev/card was "
            "denied. Turn off the card image to offload without it.");
  EXPECT_THAT(tree(copies(1)), IsEmpty());
  wanted.cardImage->devicePath = "/dev/none";
  EXPECT_EQ(
      offloadErrorOf([&] { run(wanted); }),
      "The card couldn't be opened for the card image: Could not open /dev/none: No such file "
      "or directory Turn off the card image to offload without it.");
}

TEST_F(Closing, makesNoImageForADestinationThatIsNotThere) {
  addFile("a", pattern(kChunk));
  const auto result = run(planWithImage(7));
  EXPECT_TRUE(result.allVerified());
  EXPECT_FALSE(result.cardImage);
}

TEST_F(Closing, keepsAFailedImageOutOfTheHashListAndTheFilesVerified) {
  addFile("a", pattern(kChunk));
  const auto wanted = planWithImage(0);
  fileSystem_.setScript(FaultyFileSystem::failing(Call::write, "Card Image", ENOSPC));
  const auto result = run(wanted);
  EXPECT_TRUE(result.allVerified());
  EXPECT_EQ(*result.cardImage->outcome.reason(), because("The drive is full"));
  EXPECT_THAT(readFile(result.mhlFiles[0]), Not(HasSubstr("Card Image/")));
}

TEST_F(Closing, stopsDuringTheImageWithTheFilesInPlaceAndNoRecords) {
  addFile("a", pattern(kChunk));
  OffloadEngine engine(system_, rawDeviceAccess_);
  const auto stop = [&](const OffloadProgress& progress) {
    if (progress.phase == Phase::imaging) engine.cancel();
  };
  EXPECT_EQ(offloadErrorOf([&] { engine.run(planWithImage(0), stop); }),
            "The offload was stopped.");
  EXPECT_THAT(tree(copies(1)), ElementsAre("Card Image/", "a"));
  EXPECT_EQ(rawDevices_.openDevices(), 0);
}

}  // namespace
}  // namespace OffloadKit
