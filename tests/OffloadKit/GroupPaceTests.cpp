#include "OffloadKit/Copying/GroupPace.h"

#include <gtest/gtest.h>

namespace OffloadKit {
namespace {

using std::chrono::milliseconds;

constexpr std::uint64_t kBuffer = std::uint64_t{8} << 20;

TEST(GroupPace, growsWhileFullGroupsAreQuickAndShrinksWhenTheyAreLate) {
  GroupPace pace(kBuffer);
  EXPECT_EQ(pace.room(), kBuffer);
  pace.groupDone(kBuffer / 4, milliseconds(1));
  EXPECT_EQ(pace.room(), kBuffer) << "a small group says nothing about a full one";
  pace.groupDone(kBuffer, milliseconds(600));
  EXPECT_EQ(pace.room(), kBuffer);
  for (int i = 0; i < 9; ++i) pace.groupDone(pace.room(), milliseconds(100));
  EXPECT_EQ(pace.room(), 8 * kBuffer);
  pace.groupDone(1, milliseconds(1500));
  EXPECT_EQ(pace.room(), 4 * kBuffer);
  for (int i = 0; i < 9; ++i) pace.groupDone(1, milliseconds(1500));
  EXPECT_EQ(pace.room(), kBuffer / 8);
}

TEST(GroupPace, countsFilesByMoreThanTheirBytes) {
  const GroupPace pace(kBuffer);
  EXPECT_EQ(pace.shareOf(kBuffer), kBuffer);
  EXPECT_EQ(kBuffer / pace.shareOf(0), 128U);
}

}  // namespace
}  // namespace OffloadKit
