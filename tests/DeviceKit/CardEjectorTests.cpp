#include "DeviceKit/CardEjector.h"
#include "PlatformKit/Testing/FakeDisks.h"
#include "PlatformKit/Testing/FakeEjector.h"
#include "tests/Because.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace DeviceKit {
namespace {

using Answer = PlatformKit::Ejector::Answer;
using PlatformKit::DiskFacts;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class CardEjectorOfFakes : public ::testing::Test {
 protected:
  CardEjectorOfFakes() {
    DiskFacts card;
    card.identifier = "sdb";
    card.isRemovableMedia = true;
    DiskFacts system = card;
    system.identifier = "sda";
    system.isSystemDisk = true;
    DiskFacts image;
    image.identifier = "loop0";
    image.isDiskImage = true;
    disks_.below = {{"/media/A010", card}, {"/", system}, {"/mnt", image}};
  }

  PlatformKit::Testing::FakeDisks disks_;
  PlatformKit::Testing::FakeEjector ejector_;
  const CardEjector cards_{disks_, &ejector_};
};

TEST_F(CardEjectorOfFakes, EjectsTheDiskUnderTheVolumeButNoneOfTheComputer) {
  EXPECT_EQ(cards_.eject("/media/A010", "A010"), std::nullopt);
  EXPECT_EQ(cards_.eject("/mnt", "Image"), std::nullopt);
  EXPECT_THAT(ejector_.asked, ElementsAre("sdb", "loop0"));
  ejector_.asked.clear();
  EXPECT_EQ(cards_.eject("/", "A010"),
            because("A010 is not on a memory card or an external drive. It was not ejected."));
  EXPECT_EQ(cards_.eject("/media/Server", "Server"),
            Reason(Reason::Kind::noSingleDisk, {"Server"}));
  EXPECT_THAT(ejector_.asked, IsEmpty());
}

TEST_F(CardEjectorOfFakes, SaysWhyNotAndWhatToDo) {
  const std::string noService =
      "There is no service on this computer that can eject A010. It is still mounted; unmount it "
      "before you take it out.";
  for (const auto& [answer, sentence] :
       {std::pair<Answer, std::string>{
            Answer::unmountedOnly,
            "A010 is unmounted and can be taken out, but its drive did not eject it."},
        {Answer::busy,
         "A010 couldn't be ejected because a program is still using it. Close what uses it, then "
         "try again."},
        {Answer::declined,
         "Permission to eject A010 was declined. Unmount it before you take it out."},
        {Answer::unavailable, noService},
        {Answer::failed,
         "A010 reported an error while it was unmounted. Try again before you take it out."}}) {
    ejector_.answer = answer;
    EXPECT_EQ(cards_.eject("/media/A010", "A010"), because(sentence));
  }
  EXPECT_EQ(CardEjector(disks_, nullptr).eject("/media/A010", "A010"), because(noService));
}

}  // namespace
}  // namespace DeviceKit
