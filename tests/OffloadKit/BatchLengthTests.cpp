#include "OffloadKit/Copying/BatchLength.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace OffloadKit {
namespace {

using std::chrono::milliseconds;

constexpr std::uint64_t kBuffer = std::uint64_t{8} << 20;

std::vector<SourceFile> files(std::size_t count, std::uint64_t size) {
  std::vector<SourceFile> made;
  for (std::size_t i = 0; i < count; ++i) made.push_back({std::to_string(i), size, {}, {}});
  return made;
}

TEST(BatchLength, growsWhileFullBatchesAreQuickAndShrinksWhenTheyAreLate) {
  const TemporaryNames names({});
  BatchLength length(kBuffer, 1, true, names, true);
  // A file takes the 128th part of a buffer even when it is empty.
  const auto many = files(1100, 0);
  EXPECT_EQ(length.of(many), 128U);
  length.done(std::span(many).first(32), milliseconds(1));
  EXPECT_EQ(length.of(many), 128U) << "a small batch says nothing about a full one";
  length.done(std::span(many).first(128), milliseconds(600));
  EXPECT_EQ(length.of(many), 128U);
  for (int i = 0; i < 9; ++i) length.done(std::span(many).first(length.of(many)), milliseconds(1));
  EXPECT_LE(length.of(many), 8U * 128U);
  EXPECT_GE(length.of(many), 256U) << "or what the limit of open files leaves";
  for (int i = 0; i < 9; ++i) length.done(std::span(many).first(1), milliseconds(1500));
  EXPECT_EQ(length.of(many), 16U);
}

TEST(BatchLength, leavesAloneWhatIsLongAndWhatWouldShareATemporaryCopy) {
  const TemporaryNames names({});
  const BatchLength length(kBuffer, 1, true, names, false);
  EXPECT_EQ(length.of(files(3, kBuffer)), 1U);
  EXPECT_EQ(length.of(files(30, kBuffer / 4)), 4U);
  const std::vector<SourceFile> alike = {{"a", 1, {}, {}}, {"b", 1, {}, {}}, {"A", 1, {}, {}}};
  EXPECT_EQ(length.of(alike), 2U);
  EXPECT_EQ(BatchLength(kBuffer, 1, true, names, true).of(alike), 3U);
  EXPECT_EQ(BatchLength(kBuffer, 1, false, names, true).of(alike), 1U);
}

}  // namespace
}  // namespace OffloadKit
