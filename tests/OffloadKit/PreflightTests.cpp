#include "OffloadKit/Run/Preflight.h"
#include "tests/OffloadKit/OffloadFixture.h"

#include <cerrno>

namespace OffloadKit {
namespace {

class PreflightChecks : public OffloadFixture {
 protected:
  std::string refusal(const OffloadPlan& plan, const std::vector<SourceFile>& files = {}) {
    return offloadErrorOf([&] { preflight(system_, plan, files); });
  }
  static std::vector<SourceFile> filesOf(std::uint64_t size) {
    SourceFile file;
    file.relativePath = "IMG.CR3";
    file.size = size;
    return {file};
  }
};

TEST_F(PreflightChecks, wantRoomForTheFilesAndAFixedMargin) {
  setRoom(2, 1'000'000 + kSpaceMargin);
  EXPECT_NO_THROW(preflight(system_, plan(), filesOf(1'000'000)));
  setRoom(2, 1'000'000 + kSpaceMargin - 1);
  EXPECT_EQ(refusal(plan(), filesOf(1'000'000)), "T2 (A001) needs 1 MB free but has 17.8 MB.");
  setRoom(2, 1000);
  EXPECT_EQ(refusal(plan()), "T2 (A001) needs Zero KB free but has 1 KB.");
  setRoom(1, 5);
  EXPECT_EQ(refusal(plan(), filesOf(std::numeric_limits<std::uint64_t>::max())).substr(0, 15),
            "T1 (A001) needs");
}

TEST_F(PreflightChecks, countNeitherWhatIsThereAlreadyNorWhatAnotherDriveTakes) {
  auto wanted = plan();
  wanted.cardImage = CardImageRequest{"/dev/card", 1, 5'000'000'000};
  setRoom(1, kSpaceMargin);
  EXPECT_NO_THROW(preflight(system_, wanted, {}));
  setRoom(2, kSpaceMargin + 4'999'999'999);
  EXPECT_EQ(refusal(wanted), "T2 (A001) needs 5 GB free but has 5.02 GB.");

  setRoom(1, 1'000'000'000);
  addFile("IMG.CR3", pattern(50'000));
  run(plan(1));
  setRoom(1, kSpaceMargin);
  EXPECT_TRUE(run(plan(1)).files[0].outcomes[0].isResumed());
  EXPECT_EQ(refusal(plan(1), filesOf(50'001)), "T1 (A001) needs 50 KB free but has 16.8 MB.");
}

TEST_F(PreflightChecks, refuseADriveThatCannotBeWrittenTo) {
  fileSystem_.setScript(FaultyFileSystem::failing(Call::checkWritable, "drive2", EROFS));
  EXPECT_EQ(refusal(plan()), "T2 (A001) isn't available or can't be written to.");
}

TEST_F(PreflightChecks, refuseTheCardItselfAndEverythingOnIt) {
  auto wanted = plan(1);
  PlatformKit::VolumeFacts nameless;
  nameless.availableForImportantUse = 1'000'000'000'000;
  volumes_.lay(card_, nameless);
  const auto onTheCard = [&](const Path& destination) {
    wanted.destinations = {destination};
    return refusal(wanted) ==
           destination.native() + " is on the card itself. Choose a different drive.";
  };
  EXPECT_TRUE(onTheCard(card_));
  EXPECT_TRUE(onTheCard(card_ / "new" / "folder"));
  std::filesystem::create_symlink(card_, folder_.path() / "link");
  volumes_.lay(folder_.path() / "link", nameless);
  EXPECT_TRUE(onTheCard(folder_.path() / "link" / "new"));

  // A neighbour whose name only begins like the card's is not on it.
  std::filesystem::create_directories(folder_.path() / "card2");
  volumes_.lay(folder_.path() / "card2", nameless);
  wanted.destinations = {folder_.path() / "card2"};
  EXPECT_NO_THROW(preflight(system_, wanted, {}));
}

TEST_F(PreflightChecks, refuseAnotherFolderOfTheCardsVolumeOnlyWhenTheWholeCardIsTheSource) {
  PlatformKit::VolumeFacts card;
  card.identifier = PlatformKit::VolumeIdentifier{1001};  // the first drive's
  card.root = card_;
  volumes_.lay(card_, card);
  EXPECT_EQ(refusal(plan(1)), "T1 (A001) is on the card itself. Choose a different drive.");
  card.root = folder_.path();
  volumes_.lay(card_, card);
  EXPECT_NO_THROW(preflight(system_, plan(1), {}));
}

}  // namespace
}  // namespace OffloadKit
