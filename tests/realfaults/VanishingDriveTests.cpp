// Drives that fill up, become read-only or go away while a file is copied to them.
#include "PlatformKit/Posix/UniqueFd.h"
#include "tests/realfaults/CardAndDrives.h"

#include <cerrno>
#include <filesystem>
#include <functional>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <linux/types.h>
#include <sys/ioctl.h>
#include <sys/mount.h>

namespace RealFaults {
namespace {

using testing::AnyOf;
using testing::HasSubstr;
using Telling = testing::Matcher<std::string>;
namespace fs = std::filesystem;

// What a drive and the sentence about it become.
struct Happening {
  std::function<void()> what;
  Telling told;
  bool answers = true;  // the drive can still be looked at, and rid of temporary copies
};

/// The card waits in the middle of its second file while something happens to the first drive.
class VanishingDrive : public CardAndDrives {
 protected:
  VanishingDrive() { fill(card_.native() + ".backing"); }

  void expectInTheMiddle(const Happening& happening) const {
    const FaultyFolder card(card_, "readDirect at=b.mov from=8500000 hold=1");
    const auto running = start();
    card.waitForIt();
    happening.what();
    card.setRules({});
    const Ended end = endOf(*running);
    EXPECT_EQ(end.status, 1) << end.error;
    EXPECT_THAT(end.error, happening.told);
    ASSERT_TRUE(end.result.is_object()) << end.error;
    EXPECT_LT(end.result.at("destinations").at(0).at("verified"), files_.size());
    EXPECT_EQ(end.result.at("destinations").at(1).at("verified"), files_.size());
    if (happening.answers) {
      EXPECT_EQ(expectNothingWrong(first_), 0U);
    }
    expectWhole(second_);
    expectCardUntouched(card.backing());
  }
};

TEST_F(VanishingDrive, ThatSomebodyElseFills) {
  mustRun("mount -t tmpfs -o size=40m none '" + first_.native() + "'");
  expectInTheMiddle({[&] { mustRun("cat /dev/zero >'" + first_.native() + "/other' || true"); },
                     HasSubstr("The drive is full")});
  EXPECT_EQ(umount2(first_.c_str(), MNT_DETACH), 0);
}

TEST_F(VanishingDrive, WhoseFileSystemsProcessDies) {
  const FaultyFolder drive(first_);
  expectInTheMiddle({[&] { drive.abort(); },
                     AnyOf(HasSubstr("The drive was disconnected"),
                           HasSubstr("Transport endpoint is not connected"),
                           HasSubstr("Software caused connection abort")),
                     false});
}

TEST_F(VanishingDrive, ThatIsUnmounted) {
  mustRun("mount -t tmpfs none '" + first_.native() + "'");
  expectInTheMiddle({[&] { ASSERT_EQ(umount2(first_.c_str(), MNT_DETACH), 0); },
                     HasSubstr("The drive was disconnected")});
  EXPECT_EQ(PlatformKit::Testing::tree(first_), std::vector<std::string>());
}

class VanishingDisk : public VanishingDrive {
 protected:
  void SetUp() override {
    VanishingDrive::SetUp();
    if (const auto why = Disk::whyNone("ext4")) GTEST_SKIP() << *why;
  }

  const Path image_ = temp_.path() / "disk.img";
};

// As another program or the kernel does it: writing goes on through what was opened before.
TEST_F(VanishingDisk, ThatBecomesReadOnly) {
  const Disk disk(image_, first_, "ext4");
  expectInTheMiddle(
      {[&] { mustRun("mount -o remount,abort '" + first_.native() + "'"); },
       AnyOf(HasSubstr("Read-only file system"), HasSubstr("The drive reported a write error")),
       false});
}

TEST_F(VanishingDisk, ThatTheKernelShutsDown) {
  const Disk disk(image_, first_, "ext4");
  const auto shutDown = [&] {
    constexpr unsigned long kShutDown = _IOR('X', 125, __u32);
    __u32 withoutWritingTheJournal = 2;
    const PlatformKit::UniqueFd fd(open(first_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    ASSERT_EQ(ioctl(fd.get(), kShutDown, &withoutWritingTheJournal), 0);
  };
  expectInTheMiddle({shutDown, HasSubstr("The drive reported a write error"), false});
}

TEST_F(VanishingDisk, ThatHasNoSectorsAnyMore) {
  const Disk disk(image_, first_, "ext4");
  expectInTheMiddle({[&] {
                       fs::resize_file(image_, 0);
                       mustRun("losetup -c " + disk.device());
                     },
                     HasSubstr("The drive reported a write error"), false});
}

// The disk is an image in a faulty folder: what its file system meets are errors of the medium.
TEST_F(VanishingDisk, WhoseMediumFails) {
  struct Medium {
    std::string rules;
    Telling told;
  };
  const std::string ioError = " at=disk.img error=" + std::to_string(EIO);
  const std::vector<Medium> cases = {
      {"write" + ioError, HasSubstr("The drive reported a write error")},
      {"flush" + ioError, HasSubstr("The drive reported a write error")},
      {"readDirect" + ioError, HasSubstr("The copy couldn't be read back")},
      {"any" + ioError, HasSubstr("The drive reported a write error")}};
  for (const auto& [rules, told] : cases) {
    SCOPED_TRACE(rules);
    const FaultyFolder medium(temp_.path() / "medium");
    const Disk disk(medium.point() / "disk.img", first_, "ext4");
    expectInTheMiddle({[&, &rules = rules] { medium.setRules(rules); }, told, false});
    medium.setRules({});
    fs::remove_all(second_);
    fs::create_directory(second_);
  }
}

}  // namespace
}  // namespace RealFaults
