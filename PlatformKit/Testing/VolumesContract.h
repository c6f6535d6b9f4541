#pragma once

#include "PlatformKit/Testing/TempFolder.h"
#include "PlatformKit/Volumes.h"

#include <algorithm>
#include <memory>
#include <ostream>

#include <gtest/gtest.h>

namespace PlatformKit::Testing {

/// An implementation of Volumes that is to keep what the interface promises.
struct VolumesSubject {
  const char* name;
  std::unique_ptr<Volumes> (*make)();

  friend void PrintTo(const VolumesSubject& subject, std::ostream* out) { *out << subject.name; }
};

/// What every Volumes must do. Include this in one source of a test program and instantiate it with
/// the subjects.
class VolumesContract : public ::testing::TestWithParam<VolumesSubject> {
 protected:
  const TempFolder temp_;
  const std::unique_ptr<Volumes> volumes_ = GetParam().make();
};

TEST_P(VolumesContract, ItemsOfOneVolumeHaveTheFactsOfThatVolume) {
  writeFile(temp_.path() / "card/clip", "");
  writeFile(temp_.path() / "drive/clip", "");
  std::filesystem::create_symlink("../card/clip", temp_.path() / "drive/link");
  const VolumeFacts facts = volumes_->facts(temp_.path());
  ASSERT_TRUE(facts.identifier);
  ASSERT_TRUE(facts.available);
  EXPECT_GT(*facts.available, 0U);
  EXPECT_LE(*facts.available, std::filesystem::space(temp_.path()).capacity);
  for (const char* name : {"card", "drive", "card/clip", "drive/clip", "drive/link"}) {
    const VolumeFacts other = volumes_->facts(temp_.path() / name);
    EXPECT_EQ(other.identifier, facts.identifier) << name;
    EXPECT_EQ(other.root, facts.root) << name;
    EXPECT_EQ(other.name, facts.name) << name;
    EXPECT_EQ(other.device, facts.device) << name;
  }
}

TEST_P(VolumesContract, TheRootIsAnAncestorOnTheSameVolume) {
  const VolumeFacts facts = volumes_->facts(temp_.path());
  if (!facts.root) GTEST_SKIP() << "where the temporary folder's volume is mounted is not known";
  const Path& root = *facts.root;
  EXPECT_EQ(std::mismatch(root.begin(), root.end(), temp_.path().begin(), temp_.path().end()).first,
            root.end())
      << root;
  EXPECT_EQ(volumes_->facts(root).identifier, facts.identifier);
  EXPECT_EQ(volumes_->facts(root).root, facts.root);
}

TEST_P(VolumesContract, TheDeviceOfAMountedVolumeIsNotGone) {
  const VolumeFacts facts = volumes_->facts(temp_.path());
  if (!facts.device) GTEST_SKIP() << "no device stands behind the temporary folder";
  EXPECT_FALSE(volumes_->isGone(*facts.device));
}

}  // namespace PlatformKit::Testing
