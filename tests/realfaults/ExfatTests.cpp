// A drive with exFAT in user space, as cards and shuttle drives have it: names without case, fewer
// characters, coarse dates, and no moves that replace nothing.
#include "tests/realfaults/CardAndDrives.h"

#include <filesystem>

#include <gmock/gmock.h>

namespace RealFaults {
namespace {

using testing::HasSubstr;
namespace fs = std::filesystem;

class Exfat : public CardAndDrives {
 protected:
  void SetUp() override {
    CardAndDrives::SetUp();
    if (IsSkipped()) return;
    if (const auto why = Disk::whyNone("exfat")) GTEST_SKIP() << *why;
    drive_ = std::make_unique<Disk>(temp_.path() / "exfat.img", first_, "exfat");
    fill(card_);
  }

  std::unique_ptr<Disk> drive_;
};

TEST_F(Exfat, GetsEverythingAndTheNextRunOnlyReadsItBack) {
  const Ended first = offload();
  EXPECT_EQ(first.status, 0) << first.error;
  EXPECT_EQ(first.result.at("destinations").at(0).at("readThroughCache"), true);
  EXPECT_EQ(first.result.at("destinations").at(1).at("readThroughCache"), false);
  for (const Path& drive : {first_, second_}) expectWhole(drive);

  // A copy of the same size and date is known, read, and left as it is.
  const Path copy = first_ / "A001/CLIPS/c.mov";
  const auto date = fs::last_write_time(copy);
  const std::string other = PlatformKit::Testing::pattern(files_.at("CLIPS/c.mov").size(), 9);
  PlatformKit::Testing::writeFile(copy, other);
  fs::last_write_time(copy, date);
  const Ended second = offload();
  EXPECT_EQ(second.status, 1);
  EXPECT_THAT(second.error, HasSubstr("The copy didn't match the original"));
  EXPECT_THAT(second.error, HasSubstr("4 of 5 verified · read back through this computer's cache"));
  EXPECT_THAT(second.error, HasSubstr("4 already there"));
  EXPECT_TRUE(PlatformKit::Testing::readFile(copy) == other);
}

TEST_F(Exfat, RefusesOnlyTheNamesThatItCannotHave) {
  for (const auto& [name, content] :
       {std::pair("CLIPS/A.mov", "another"), {"what?.mov", "b"}, {"a:b.mov", "c"}}) {
    files_[name] = content;
  }
  fill(card_);
  const Ended end = offload();
  EXPECT_EQ(end.status, 1);
  EXPECT_THAT(end.error, HasSubstr("A different file with this name is already"));
  EXPECT_EQ(end.result.at("failed").size(), 3U);
  EXPECT_EQ(end.result.at("destinations").at(0).at("verified"), files_.size() - 3);
  EXPECT_EQ(end.result.at("destinations").at(1).at("verified"), files_.size());
  EXPECT_FALSE(fs::exists(first_ / "A001/what?.mov"));
  expectWhole(second_);
  expectCardUntouched(card_);
}

}  // namespace
}  // namespace RealFaults
