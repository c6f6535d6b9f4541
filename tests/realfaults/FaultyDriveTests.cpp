// A drive whose file system answers with errors, wrong bytes and refusals, beside a healthy one.
#include "tests/realfaults/CardAndDrives.h"

#include <cerrno>
#include <filesystem>

#include <gmock/gmock.h>

namespace RealFaults {
namespace {

using testing::HasSubstr;
namespace fs = std::filesystem;

std::string error(int number) {
  return " error=" + std::to_string(number);
}

struct Case {
  std::string rules;       // the first must have concerned a call
  std::string told;        // about the faulty drive; empty: all is verified
  bool leavesOne = false;  // a temporary copy that could not be removed
};

class FaultyDrive : public CardAndDrives {
 protected:
  // Makes the first drive a faulty one for one run.
  void expect(const Case& expected) {
    SCOPED_TRACE(expected.rules);
    for (const Path& drive : {first_, second_}) fs::remove_all(drive);
    fs::create_directory(second_);
    {
      const FaultyFolder drive(first_);
      drive.setRules(expected.rules);
      const Ended end = offload();
      EXPECT_GT(drive.concerned(), 0) << "the fault never came";
      drive.setRules({});
      expectTold(expected, end);
      EXPECT_EQ(expectNothingWrong(first_), expected.leavesOne ? 1U : 0U);
    }
    fs::remove_all(first_.native() + ".backing");
    expectWhole(second_);
    expectCardUntouched(card_);
  }

  void expectTold(const Case& expected, const Ended& end) const {
    ASSERT_TRUE(end.result.is_object()) << end.error;
    const auto& drives = end.result.at("destinations");
    EXPECT_EQ(drives.at(1).at("verified"), files_.size());
    EXPECT_EQ(end.status, expected.told.empty() ? 0 : 1) << end.error;
    EXPECT_THAT(end.error, HasSubstr(expected.told));
    if (expected.told.empty()) {
      EXPECT_EQ(drives.at(0).at("verified"), files_.size());
      expectWhole(first_);
    } else {
      EXPECT_LT(drives.at(0).at("verified"), files_.size());
    }
  }
};

TEST_F(FaultyDrive, FailsItsOwnFilesOnlyAndSaysWhy) {
  fill(card_);
  constexpr const char* kWriteError = "The drive reported a write error";
  constexpr const char* kNotRead = "The copy couldn't be read back";
  constexpr const char* kDiffers = "The copy didn't match the original";
  const std::vector<Case> cases = {
      {"create at=.b.mov.zmpart" + error(EACCES), "No permission to write here"},
      {"create at=.zmpart nth=3" + error(EMFILE), "Too many open files"},
      {"write at=.b.mov.zmpart" + error(EIO), kWriteError},
      {"write at=.b.mov.zmpart nth=5" + error(EIO), kWriteError},
      {"write at=.b.mov.zmpart nth=3" + error(ENOSPC), "The drive is full"},
      {"write at=.b.mov.zmpart nth=3" + error(EDQUOT), "Disk quota exceeded"},
      {"write at=.b.mov.zmpart from=8500000" + error(EFBIG), "File too large"},
      {"write at=.b.mov.zmpart nth=3" + error(EROFS), "Read-only file system"},
      {"flush at=.b.mov.zmpart" + error(EIO), kWriteError},
      {"flush at=.b.mov.zmpart" + error(ENOSPC), "The drive is full"},
      {"readDirect at=.b.mov.zmpart nth=2" + error(EIO), kNotRead},
      {"openDirect at=.b.mov.zmpart" + error(EIO), kNotRead},
      {"readDirect at=.b.mov.zmpart nth=3 times=1 flip=1", kDiffers},
      {"noReplace at=.b.mov.zmpart" + error(EIO), kWriteError},
      {"flush at=/CLIPS" + error(EIO), kWriteError}};
  for (const Case& expected : cases) expect(expected);
}

TEST_F(FaultyDrive, ThatCannotEvenRemoveKeepsATemporaryCopyAndNoWrongName) {
  fill(card_);
  expect({"unlink at=.b.mov.zmpart" + error(EIO) + "\nreadDirect at=.b.mov.zmpart flip=1",
          "The copy didn't match the original", true});
}

TEST_F(FaultyDrive, ThatIsOnlyPeculiarGetsEverything) {
  fill(card_);
  const std::string noDirect = "openDirect" + error(EINVAL);
  const std::string noDirectReads = "readDirect" + error(EINVAL);
  const std::vector<Case> cases = {
      {"write at=.a.mov.zmpart short=1000", ""},
      {"any delay=500", ""},
      {noDirect, ""},
      {noDirectReads, ""},
      {"noReplace" + error(EINVAL), ""},
      // What is read without direct reads is compared all the same.
      {"read at=.b.mov.zmpart flip=1\n" + noDirect, "The copy didn't match the original"},
      {"read at=.b.mov.zmpart flip=1\n" + noDirectReads, "The copy didn't match the original"}};
  for (const Case& expected : cases) expect(expected);
}

TEST_F(FaultyDrive, WithoutMovesThatReplaceNothingKeepsWhatComesInTheLastMoment) {
  fill(card_);
  const FaultyFolder drive(first_, "readDirect at=.b.mov.zmpart hold=1");
  const auto running = start();
  drive.waitForIt();
  PlatformKit::Testing::writeFile(first_ / "A001/CLIPS/b.mov", "precious");
  drive.setRules("noReplace at=.b.mov.zmpart" + error(EINVAL));
  const Ended end = endOf(*running);
  EXPECT_EQ(end.status, 1) << end.error;
  EXPECT_THAT(end.error, HasSubstr("/first/A001: File exists"));
  EXPECT_TRUE(PlatformKit::Testing::readFile(first_ / "A001/CLIPS/b.mov") == "precious");
  EXPECT_FALSE(fs::exists(first_ / "A001/CLIPS/.b.mov.zmpart"));
  expectWhole(second_);
}

class FaultyCard : public CardAndDrives {};

TEST_F(FaultyCard, FailsTheFileItCannotReadTwiceAlikeOnEveryDrive) {
  struct CardCase {
    std::string rules;
    std::string told;
  };
  const std::vector<CardCase> cases = {
      {"read at=b.mov nth=10" + error(EIO), ": Input/output error"},
      {"readDirect at=b.mov from=8500000" + error(EIO), ": Input/output error"},
      {"open at=b.mov" + error(EIO), ": Input/output error"},
      {"read at=b.mov" + error(ENODEV), ": No such device"},
      {"readDirect at=b.mov nth=3 times=1 flip=1", " read differently the second time"},
      {"readDirect at=b.mov to=8000000" + error(EIO), " read differently the second time"},
      {"read at=b.mov nth=3 times=1 flip=1", " read differently the second time"}};
  fill(card_.native() + ".backing");
  for (const auto& [rules, told] : cases) {
    SCOPED_TRACE(rules);
    const FaultyFolder card(card_, rules);
    const Ended end = offload();
    EXPECT_GT(card.concerned(), 0) << "the fault never came";
    EXPECT_EQ(end.status, 1) << end.error;
    EXPECT_THAT(end.error, HasSubstr("The card couldn't be read: CLIPS/b.mov" + told));
    EXPECT_EQ(end.result.at("failed").size(), 1U);
    for (const Path& drive : {first_, second_}) {
      EXPECT_TRUE(fs::exists(drive / "A001/CLIPS/c.mov"));
      EXPECT_EQ(expectNothingWrong(drive), 0U);
      EXPECT_FALSE(fs::exists(drive / "A001/CLIPS/b.mov"));
    }
    expectCardUntouched(card.backing());
    for (const Path& drive : {first_, second_}) fs::remove_all(drive);
  }
}

TEST_F(FaultyCard, ThatIsSlowIsCopiedWhole) {
  fill(card_.native() + ".backing");
  const FaultyFolder card(card_, "any delay=2000");
  const Ended end = offload();
  EXPECT_GT(card.concerned(), 0);
  EXPECT_EQ(end.status, 0) << end.error;
  for (const Path& drive : {first_, second_}) expectWhole(drive);
}

}  // namespace
}  // namespace RealFaults
