#include "OffloadKit/Copying/CopyTargets.h"
#include "tests/OffloadKit/OffloadFixture.h"

namespace OffloadKit {
namespace {

using PlatformKit::Date;

class Resume : public OffloadFixture {
 protected:
  // A copy on the first drive whose date differs from the file's by `difference`.
  SourceFile fileWithCopy(std::chrono::nanoseconds difference, const std::string& copy = "12345") {
    SourceFile file;
    file.relativePath = "DCIM/IMG.CR3";
    file.size = 5;
    file.modified = Date(std::chrono::seconds(1'790'000'000));
    const Path path = drive(1) / file.relativePath;
    writeFile(path, copy);
    EXPECT_EQ(linux_.setDates(path, file.modified + difference, std::nullopt), 0);
    return file;
  }
  bool isThere(const SourceFile& file) { return alreadyThere(fileSystem_, file, drive(1)); }
};

TEST_F(Resume, knowsACopyByItsSizeAndItsDateWithinTwoSeconds) {
  using namespace std::chrono_literals;
  EXPECT_TRUE(isThere(fileWithCopy(1900ms)));
  EXPECT_TRUE(isThere(fileWithCopy(-1900ms)));
  EXPECT_TRUE(isThere(fileWithCopy(2s - 1ns)));
  EXPECT_FALSE(isThere(fileWithCopy(2s)));
  EXPECT_FALSE(isThere(fileWithCopy(-2s)));
  EXPECT_FALSE(isThere(fileWithCopy(0s, "1234")));
}

TEST_F(Resume, takesOnlyARegularFileForACopy) {
  const SourceFile file = fileWithCopy(std::chrono::seconds(0));
  const Path path = drive(1) / file.relativePath;
  std::filesystem::rename(path, drive(1) / "elsewhere");
  EXPECT_FALSE(isThere(file));
  // A link whose own size and date are those of the file.
  std::filesystem::create_symlink("12345", path);
  EXPECT_EQ(linux_.setDates(path, file.modified, std::nullopt), 0);
  EXPECT_FALSE(isThere(file));
}

TEST(TemporaryNames, areHiddenNeighboursThatFitAndThatNoFileOfTheCardHas) {
  const auto named = [](const std::vector<std::string_view>& card, const std::string& path) {
    return TemporaryNames(card).forFile(path);
  };
  EXPECT_EQ(named({}, "DCIM/IMG.CR3"), "DCIM/.IMG.CR3.zmpart");
  EXPECT_EQ(named({}, "IMG"), ".IMG.zmpart");

  const std::string fits(247, 'n');
  EXPECT_EQ(named({}, "d/" + fits), "d/." + fits + ".zmpart");
  EXPECT_EQ(named({}, "d/" + fits + "x"), "d/." + fits + ".zmpart");
  // A character of four bytes that would be cut in two goes whole.
  EXPECT_EQ(named({}, std::string(245, 'n') + "\xF0\x9F\x8E\xA5.MOV"),
            "." + std::string(245, 'n') + ".zmpart");

  EXPECT_EQ(named({".IMG.zmpart"}, "IMG"), ".IMG~1.zmpart");
  EXPECT_EQ(named({".img.ZMPART", ".IMG~1.zmpart"}, "IMG"), ".IMG~2.zmpart");
  EXPECT_EQ(named({"other/.IMG.zmpart"}, "IMG"), ".IMG.zmpart");
  EXPECT_EQ(named({".IMG.zmpart/inside"}, "IMG"), ".IMG~1.zmpart");
}

class Targets : public OffloadFixture {
 protected:
  TargetChoice choose(int number, const SourceFile& file) {
    KnownFolder folder;
    return chooseTarget(fileSystem_, file, card_ / file.relativePath, drive(number),
                        TemporaryNames({file.relativePath}).forFile(file.relativePath), folder);
  }
};

TEST_F(Targets, leaveATakenNameAloneEvenADanglingLink) {
  const SourceFile file{"IMG", 5, {}, {}};
  writeFile(drive(1) / "IMG", "other");
  std::filesystem::create_symlink("nowhere", drive(2) / "IMG");
  for (const int number : {1, 2}) {
    EXPECT_EQ(choose(number, file).refusal, Reason(Reason::Kind::otherFileThere));
  }
  EXPECT_EQ(readFile(drive(1) / "IMG"), "other");
  EXPECT_TRUE(std::filesystem::is_symlink(drive(2) / "IMG"));
}

}  // namespace
}  // namespace OffloadKit
