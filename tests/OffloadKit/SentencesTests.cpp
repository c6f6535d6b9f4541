#include "DeviceKit/Places.h"
#include "OffloadKit/Wording/Format.h"
#include "PlatformKit/Paths.h"
#include "tests/OffloadKit/OffloadFixture.h"

#include <cerrno>
#include <cstring>

namespace OffloadKit {
namespace {

TEST(Reason, givesDriveSentencesForDriveErrorsAndTheSystemsTextForTheRest) {
  const std::pair<int, const char*> sentences[] = {
      {EPERM, "No permission to write here"},
      {EACCES, "No permission to write here"},
      {EIO, "The drive reported a write error"},
      {ENXIO, "The drive was disconnected"},
      {ENODEV, "The drive was disconnected"},
      {ENOSPC, "The drive is full"},
      {ENOENT, std::strerror(ENOENT)},
      {EROFS, "Read-only file system"},
      {0, "The drive reported a write error"},
      {-1, "The drive reported a write error"},
      {9999, "The drive reported a write error"},
  };
  for (const auto& [error, sentence] : sentences) {
    EXPECT_EQ(Reason::ofDrive(error).english(), sentence) << error;
  }
}

TEST(Format, writesSpansOfTimeAndNumbersForPeople) {
  EXPECT_EQ(Format::duration(59.4), "59 s");
  EXPECT_EQ(Format::duration(59.5), "1 min 0 s");
  EXPECT_EQ(Format::duration(3599.4), "59 min 59 s");
  EXPECT_EQ(Format::duration(3600), "1 h 0 min");
  EXPECT_EQ(Format::duration(7500), "2 h 5 min");
  EXPECT_EQ(Format::duration(-3), "0 s");
  EXPECT_EQ(Format::duration(std::numeric_limits<double>::quiet_NaN()), "0 s");
  EXPECT_EQ(Format::duration(std::numeric_limits<double>::infinity()).substr(0, 6), "277777");
  EXPECT_EQ(Format::grouped(999), "999");
  EXPECT_EQ(Format::grouped(1'234'567), "1,234,567");
}

using Names = OffloadFixture;

TEST_F(Names, destinationsAreKnownByTheirVolumeAndFolder) {
  EXPECT_EQ(DeviceKit::destinationName(system_, copies(1)), "T1 (A001)");
  PlatformKit::VolumeFacts nameless;
  volumes_.lay(drive(2), nameless);
  EXPECT_EQ(DeviceKit::destinationName(system_, copies(2)), copies(2).native());
}

TEST_F(Names, theNearestExistingFolderIsFoundAboveWhatIsMissing) {
  EXPECT_EQ(PlatformKit::nearestExisting(fileSystem_, copies(1)), drive(1));
  EXPECT_EQ(PlatformKit::nearestExisting(fileSystem_, drive(1)), drive(1));
  EXPECT_EQ(PlatformKit::nearestExisting(fileSystem_, "/no-such-folder/a/b"), "/");
  std::string longest = drive(1).native() + "//no-such-folder";
  for (int i = 0; i < 60'000; ++i) longest += "/a";
  EXPECT_EQ(PlatformKit::nearestExisting(fileSystem_, longest), drive(1));
  addFile("IMG.CR3", "x");
  EXPECT_EQ(PlatformKit::nearestExisting(fileSystem_, card_ / "IMG.CR3" / "below" / "a" / "file"),
            card_ / "IMG.CR3");
}

}  // namespace
}  // namespace OffloadKit
