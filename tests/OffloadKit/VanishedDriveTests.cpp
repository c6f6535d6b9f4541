#include "OffloadKit/Records/Verdict.h"
#include "tests/OffloadKit/OffloadFixture.h"

#include <cerrno>

namespace OffloadKit {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class VanishedDrive : public OffloadFixture {
 protected:
  // From the first such call for the file "b" on the second drive on, every call there answers
  // `error`, as a pulled drive does.
  void pullAt(Call call, int error) {
    gone_ = false;
    volumes_.plugIn(device(2));
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
  const auto disconnected = Outcome::failed(because("The drive was disconnected"));
  for (const bool together : {false, true})
    for (const Call call : {Call::createFile, Call::write, Call::flush, Call::move}) {
      for (const int error : {EIO, EROFS, ENOTCONN, ENODATA, ENOENT}) {
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
                    ElementsAre(std::pair(1U, because("The drive was disconnected"))));
        EXPECT_EQ(result.files[0].outcomes[1], disconnected);
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
    for (std::size_t i = 0; i < result.files.size(); ++i) {
      EXPECT_EQ(result.files[i].outcomes[1],
                Outcome::failed(because("The drive was disconnected")));
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
  EXPECT_EQ(result.files[1].outcomes[1], Outcome::failed(because("The drive was disconnected")));
  EXPECT_EQ(result.files[2].outcomes[1], Outcome::failed(because("The drive was disconnected")));
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
  EXPECT_THAT(group.destinationErrors,
              ElementsAre(std::pair(1U, because("The drive was disconnected"))));
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
  EXPECT_EQ(result.files[0].outcomes[1], Outcome::failed(because("The drive was disconnected")));
  EXPECT_THAT(result.destinationErrors,
              ElementsAre(std::pair(1U, because("The drive was disconnected"))));
}

// Names that were not flushed when a drive began to fail need not be there when it comes back. A
// name is flushed beside the next file, and known to be when the one after that is on the drive.
TEST_F(VanishedDrive, isToldOnlyWhatWasFlushedBeforeItFailed) {
  for (const char* name : {"a", "b", "c", "d"}) addFile(name, pattern(kChunk));
  bool failing = false;
  fileSystem_.setScript([&](const CallInfo& info) {
    const bool there = info.path.native().starts_with(drive(2).native());
    if (there && info.call == Call::write && info.path.filename() == ".d.zmpart") failing = true;
    const bool changes = info.call == Call::write || info.call == Call::flushFolder;
    return Intervention{failing && there && changes ? EIO : 0};
  });
  const auto result = run(plan());
  const auto failed = Outcome::failed(because("The drive reported a write error"));
  EXPECT_EQ(result.files[0].outcomes[1], Outcome::verified(false));
  EXPECT_EQ(result.files[1].outcomes[1], failed);
  EXPECT_EQ(result.files[3].outcomes[1], failed);
  EXPECT_EQ(result.verifiedCount(0), 4U);
  EXPECT_THAT(readFile(result.reports[0]), HasSubstr("1 of 4 files verified · stopped: "));
}

TEST_F(VanishedDrive, isNotTriedAgainWhileTheRestOfAGroupGetsItsNames) {
  for (const char* name : {"a", "b", "c"}) addFile(name, pattern(1000));
  std::vector<std::string> tried;
  fileSystem_.setScript([&](const CallInfo& info) {
    const bool there = info.path.native().starts_with(drive(2).native());
    if (!there || info.call != Call::move || tried.size() > 2) return Intervention{};
    tried.push_back(info.path.filename());
    if (tried.size() < 2) return Intervention{EACCES};
    volumes_.pull(device(2));
    return Intervention{EIO};
  });
  const auto result = run(plan());
  EXPECT_THAT(tried, ElementsAre("a", "b"));
  EXPECT_EQ(result.files[0].outcomes[1], Outcome::failed(because("No permission to write here")));
  EXPECT_EQ(result.files[2].outcomes[1], Outcome::failed(because("The drive was disconnected")));
  EXPECT_EQ(result.verifiedCount(0), 3U);
  expectNothingPending();
}

/// A drive that is unmounted leaves an empty folder behind, on the computer's own disk.
class UnmountedDrive : public VanishedDrive {
 protected:
  UnmountedDrive() {
    for (const char* name : {"a", "b", "c"}) addFile(name, pattern(1000));
    rawDevices_.add("/dev/card", pattern(4 * kChunk, 9));
  }

  // Runs the plan; the second drive is unmounted at the first such call.
  std::optional<OffloadResult> unmountAt(Call call, const std::string& name, OffloadPlan wanted) {
    fileSystem_.setScript([=, this](const CallInfo& info) {
      if (info.call == call && info.path.filename() == name) isUnmounted_ = true;
      Intervention intervention;
      // Only where it was mounted looks different: below, everything can be made and found.
      const Path& path = info.path.filename() == "." ? info.path.parent_path() : info.path;
      intervention.otherVolume = isUnmounted_ && (path == drive(2) || path == copies(2));
      return intervention;
    });
    try {
      return run(wanted);
    } catch (const OffloadError& error) {
      refusal_ = error.what();
      return std::nullopt;
    }
  }
  // What has a final name where the drive was mounted.
  [[nodiscard]] std::vector<std::string> named() const {
    std::vector<std::string> items = tree(copies(2));
    std::erase_if(items, [](const std::string& item) { return item.ends_with('/'); });
    return items;
  }

  bool isUnmounted_ = false;
  std::string refusal_;
};

TEST_F(UnmountedDrive, keepsARunFromStartingOnTheDiskBehindIt) {
  EXPECT_FALSE(unmountAt(Call::list, "card", plan()));
  EXPECT_EQ(refusal_, "T2 (A001) isn't available or can't be written to.");
  EXPECT_THAT(tree(drive(2)), IsEmpty());

  // It was gone already when the run began.
  auto chosenBefore = plan();
  chosenBefore.chosen = {{}, {drive(2), PlatformKit::VolumeIdentifier{1}}};
  EXPECT_FALSE(unmountAt(Call::list, "nowhere", chosenBefore));
  EXPECT_THAT(tree(drive(2)), IsEmpty());
}

TEST_F(UnmountedDrive, getsNoNamesOnTheDiskBehindIt) {
  for (const auto& [call, name] :
       {std::pair(Call::lockFolder, "A001"), std::pair(Call::createFile, ".b.zmpart"),
        std::pair(Call::flush, ".c.zmpart"), std::pair(Call::openForReading, ".a.zmpart")}) {
    for (int number = 1; number <= 2; ++number) std::filesystem::remove_all(copies(number));
    isUnmounted_ = false;
    const auto result = unmountAt(call, name, plan());
    ASSERT_TRUE(isUnmounted_ && result) << name;
    EXPECT_EQ(result->verifiedCount(0), 3U);
    EXPECT_EQ(result->verifiedCount(1), 0U);
    EXPECT_EQ(result->files[1].outcomes[1], Outcome::failed(because("The drive was disconnected")));
    EXPECT_THAT(result->destinationErrors,
                ElementsAre(std::pair(1U, because("The drive was disconnected"))));
    EXPECT_THAT(named(), IsEmpty()) << name;
  }
}

TEST_F(UnmountedDrive, takesBackWhatHadNamesThatWereNotFlushed) {
  const auto result = unmountAt(Call::flushFolder, "A001", plan());
  ASSERT_TRUE(result);
  EXPECT_EQ(result->verifiedCount(1), 0U);
  EXPECT_EQ(result->files[2].outcomes[1], Outcome::failed(because("The drive was disconnected")));
}

TEST_F(UnmountedDrive, getsNoImageAndNoRecordsOnTheDiskBehindIt) {
  for (const std::size_t imageOn : {std::size_t{0}, std::size_t{1}}) {
    for (int number = 1; number <= 2; ++number) std::filesystem::remove_all(copies(number));
    isUnmounted_ = false;
    auto wanted = plan();
    wanted.cardImage = CardImageRequest{"/dev/card", imageOn, 4 * kChunk};
    const auto result = unmountAt(Call::createFolder, "Card Image", wanted);
    ASSERT_TRUE(isUnmounted_ && result);
    // The copies had been flushed by then.
    EXPECT_TRUE(result->allVerified());
    EXPECT_FALSE(Verdict(*result).isGood());
    EXPECT_THAT(named(), ElementsAre("a", "b", "c"));
    EXPECT_EQ(result->cardImage->outcome,
              imageOn == 0
                  ? CardImageResult::Outcome::verified()
                  : CardImageResult::Outcome::failed(because("The drive was disconnected")));
    ASSERT_EQ(result->missingRecords.size(), 2U);
    EXPECT_EQ(result->missingRecords[0].destination, 1U);
    EXPECT_EQ(result->missingRecords[0].reason, because("The drive was disconnected"));
    EXPECT_EQ(result->reports.size(), 1U);
  }
}

TEST_F(UnmountedDrive, thatWasGivenUpGetsNoImage) {
  auto wanted = plan();
  wanted.cardImage = CardImageRequest{"/dev/card", 1, 4 * kChunk};
  fileSystem_.setScript(FaultyFileSystem::failing(Call::write, ".b.zmpart", ENOSPC));
  const auto result = run(wanted);
  EXPECT_EQ(result.cardImage->outcome,
            CardImageResult::Outcome::failed(because("The drive is full")));
  EXPECT_FALSE(std::filesystem::exists(copies(2) / "Card Image"));
}

class MovedFolder : public OffloadFixture {};

// Names given in a folder that was moved away are not where anybody looks for them.
TEST_F(MovedFolder, takesTheNamesAlongThatWereGivenInIt) {
  for (const bool isReplaced : {false, true}) {
    for (const bool together : {false, true}) {
      for (const int after : {1, 3, 6}) {
        for (const int number : {1, 2}) std::filesystem::remove_all(copies(number));
        std::filesystem::remove_all(drive(2) / "away");
        for (int i = 0; i < 6; ++i) {
          addFile("A/" + std::to_string(i), pattern(together ? 1000 : kChunk));
        }
        int moves = 0;
        fileSystem_.setScript([&](const CallInfo& info) {
          const bool isNamed =
              info.call == Call::move && info.path.parent_path() == copies(2) / "A";
          if (isNamed && ++moves == after) {
            std::filesystem::rename(copies(2) / "A", drive(2) / "away");
            if (isReplaced) std::filesystem::create_directory(copies(2) / "A");
          }
          return Intervention{};
        });
        const OffloadResult result = run(plan());
        fileSystem_.setScript({});
        EXPECT_EQ(result.verifiedCount(0), 6U);
        for (const OffloadedFile& file : result.files) {
          const bool isThere = std::filesystem::exists(copies(2) / file.file.relativePath);
          EXPECT_TRUE(isThere || !file.outcomes[1].isVerified())
              << file.file.relativePath << (together ? " together" : "") << " move " << after;
        }
      }
    }
  }
}

}  // namespace
}  // namespace OffloadKit
