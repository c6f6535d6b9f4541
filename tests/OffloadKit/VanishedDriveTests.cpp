#include "tests/OffloadKit/OffloadFixture.h"

#include <cerrno>

namespace OffloadKit {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

class VanishedDrive : public OffloadFixture {
 protected:
  // From the first such call for the file "b" on the second drive on, every call there answers
  // `error`, as a pulled drive does.
  void pullAt(Call call, int error) {
    gone_ = false;
    fileSystem_.setScript([this, call, error](const CallInfo& info) {
      const bool there = info.path.native().starts_with(drive(2).native());
      const bool theFile = info.path.filename() == "b" || info.path.filename() == ".b.zmpart";
      if (there && theFile && info.call == call) {
        gone_ = true;
        volumes_.pull(device(2));
      }
      return Intervention{gone_ && there ? error : 0};
    });
  }
  // Alone, a file is finished before the next; together, three are on their way at once.
  void addThreeFiles(bool together) {
    for (const char* name : {"a", "b", "c"}) addFile(name, pattern(together ? 1000 : kChunk));
  }
  bool gone_ = false;
};

TEST_F(VanishedDrive, isGivenUpWhateverTheKernelCallsItAndWheneverItGoes) {
  const auto disconnected = Outcome::failed("The drive was disconnected");
  for (const bool together : {false, true})
    for (const Call call : {Call::createFile, Call::write, Call::flush, Call::move}) {
      for (const int error : {EIO, EROFS, ENOTCONN, ESHUTDOWN, ENODATA}) {
        for (int number = 1; number <= 2; ++number) std::filesystem::remove_all(drive(number));
        std::filesystem::create_directories(drive(1));
        std::filesystem::create_directories(drive(2));
        addThreeFiles(together);
        pullAt(call, error);
        const auto result = run(plan());
        ASSERT_TRUE(gone_);
        EXPECT_EQ(result.files[1].outcomes[1], disconnected);
        EXPECT_EQ(result.files[2].outcomes[1], disconnected);
        EXPECT_EQ(result.verifiedCount(0), 3U);
        EXPECT_THAT(result.destinationErrors,
                    ElementsAre(std::pair(1U, "The drive was disconnected")));
        const bool firstHasItsName = !together || call == Call::move;
        EXPECT_EQ(result.files[0].outcomes[1],
                  firstHasItsName ? Outcome::verified(false) : disconnected);
      }
    }
}

// The copies of the next files are made while these get their names.
TEST_F(VanishedDrive, isGivenUpWhileTheNextGroupHasBegun) {
  for (char name = 'a'; name <= 'z'; ++name) addFile(std::string(1, name), pattern(20'000));
  for (const Call call : {Call::move, Call::createFile}) {
    for (int number = 1; number <= 2; ++number) std::filesystem::remove_all(copies(number));
    pullAt(call, EIO);
    const auto result = run(plan());
    ASSERT_TRUE(gone_);
    EXPECT_EQ(result.verifiedCount(0), 26U);
    EXPECT_EQ(result.verifiedCount(1), call == Call::move ? 1U : 0U);
    for (std::size_t i = 1; i < result.files.size(); ++i) {
      EXPECT_EQ(result.files[i].outcomes[1], Outcome::failed("The drive was disconnected"));
    }
    fileSystem_.setScript({});
    volumes_.plugIn(device(2));
    EXPECT_TRUE(run(plan()).allVerified());
    expectIdentical(2);
    expectNothingPending();
  }
}

TEST_F(VanishedDrive, isGivenUpWhenItGoesDuringTheReadBack) {
  addThreeFiles(false);
  pullAt(Call::openForReading, EIO);
  const auto result = run(plan());
  EXPECT_EQ(result.files[1].outcomes[1], Outcome::failed("The copy couldn't be read back"));
  EXPECT_EQ(result.files[2].outcomes[1], Outcome::failed("The drive was disconnected"));
  EXPECT_EQ(result.verifiedCount(0), 3U);

  // Together, whichever of the three is read first meets it.
  for (int number = 1; number <= 2; ++number) std::filesystem::remove_all(copies(number));
  addThreeFiles(true);
  pullAt(Call::openForReading, EIO);
  const auto group = run(plan());
  EXPECT_TRUE(gone_);
  EXPECT_EQ(group.verifiedCount(0), 3U);
  EXPECT_FALSE(group.files[1].outcomes[1].isVerified());
  EXPECT_FALSE(group.files[2].outcomes[1].isVerified());
  EXPECT_THAT(group.destinationErrors, ElementsAre(std::pair(1U, "The drive was disconnected")));
}

TEST_F(VanishedDrive, takesItsVerdictAlongWhenItGoesBeforeTheNamesAreDurable) {
  for (const char* name : {"a", "b"}) addFile(name, pattern(1000));
  fileSystem_.setScript([&](const CallInfo& info) {
    const bool hit = info.call == Call::flushFolder && info.path == copies(2);
    if (hit) volumes_.pull(device(2));
    return Intervention{hit ? EIO : 0};
  });
  const auto result = run(plan());
  EXPECT_EQ(result.verifiedCount(0), 2U);
  EXPECT_EQ(result.verifiedCount(1), 0U);
  EXPECT_EQ(result.files[0].outcomes[1], Outcome::failed("The drive was disconnected"));
  EXPECT_THAT(result.destinationErrors, ElementsAre(std::pair(1U, "The drive was disconnected")));
}

// A drive that is unmounted under way leaves an empty folder behind, on the computer's own disk.
TEST_F(VanishedDrive, isMissedWhenItsFolderLiesOnAnotherVolume) {
  for (const char* name : {"a", "b", "c"}) addFile(name, pattern(1000));
  bool unmounted = false;
  for (const char* at : {".b.zmpart", "the end"}) {
    for (int number = 1; number <= 2; ++number) std::filesystem::remove_all(copies(number));
    unmounted = false;
    fileSystem_.setScript([&](const CallInfo& info) {
      Intervention intervention;
      const bool there = info.path.native().starts_with(drive(2).native());
      if (there && info.call == Call::createFile && info.path.filename() == at) unmounted = true;
      if (there && info.call == Call::flushFolder) unmounted = true;
      intervention.otherVolume = unmounted && info.path == copies(2);
      return intervention;
    });
    const auto result = run(plan());
    EXPECT_TRUE(unmounted);
    EXPECT_EQ(result.verifiedCount(0), 3U);
    EXPECT_EQ(result.files[2].outcomes[1], Outcome::failed("The drive was disconnected"));
    EXPECT_THAT(result.destinationErrors, ElementsAre(std::pair(1U, "The drive was disconnected")));
  }
}

}  // namespace
}  // namespace OffloadKit
