#include "tests/torture/Campaign.h"
#include "tests/torture/Mutations.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Torture {

bool isLong() {
  return std::getenv("ZEPHRIMARK_TORTURE") != nullptr;
}

std::uint64_t seed() {
  static const std::uint64_t chosen = [] {
    if (const char* given = std::getenv("ZEPHRIMARK_SEED"))
      return std::strtoull(given, nullptr, 10);
    return isLong() ? static_cast<unsigned long long>(std::random_device{}() >> 1) : 1ULL;
  }();
  return chosen;
}

namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr Variant kUsual{"after earlier runs", 8192};
constexpr Variant kSmallChunks{"small chunks, card read once", 4096, false};
constexpr Variant kFresh{"empty drives", 8192, true, true};
constexpr Variant kFat{"FAT", 8192, true, false, true};

constexpr std::size_t kAll = 1'000'000;  // more steps than any run has

std::vector<Tally> tallies;  // of the whole program, for the table at its end

void printTable() {
  std::printf("\n%-48s %8s %11s %8s\n", "campaign", "faults", "violations", "seconds");
  for (const Tally& tally : tallies) {
    std::printf("%-48s %8zu %11zu %8.1f\n", tally.name.c_str(), tally.faults,
                tally.violations.size(), std::chrono::duration<double>(tally.took).count());
  }
  std::printf("seed %llu (ZEPHRIMARK_SEED repeats it)\n", static_cast<unsigned long long>(seed()));
}

class Surroundings final : public testing::Environment {
 public:
  // What a drive makes of flushes is modelled here, so the one below need not do any work.
  void SetUp() override {
    if (std::filesystem::exists("/dev/shm")) setenv("TMPDIR", "/dev/shm", 0);
  }
  void TearDown() override { printTable(); }
};
const auto* const kSurroundings = testing::AddGlobalTestEnvironment(new Surroundings);

void expectClean(Tally tally, std::size_t faults) {
  EXPECT_GE(tally.faults, faults);
  const std::size_t shown = std::min<std::size_t>(tally.violations.size(), 10);
  const Violations first(tally.violations.begin(),
                         tally.violations.begin() + static_cast<std::ptrdiff_t>(shown));
  EXPECT_THAT(first, IsEmpty()) << tally.violations.size() << " in all; seed " << seed();
  tallies.push_back(std::move(tally));
}

TEST(Torture, KilledAtAnyStep) {
  const std::size_t points = isLong() ? kAll : 20;
  const std::size_t atLeast = isLong() ? 500 : points - points / 5;
  // Some late calls do not come, since threads take turns as they like.
  expectClean(killRuns(kUsual, points, true), atLeast);
  expectClean(killRuns(kSmallChunks, points, false), atLeast);
  expectClean(killRuns(kFresh, points, false), atLeast);
}

TEST(Torture, KilledProgram) {
  const std::size_t kills = isLong() ? 100 : 4;
  expectClean(killProgram(kills, seed()), kills / 2);
}

TEST(Torture, PowerCutAtAnyStep) {
  const std::size_t cuts = isLong() ? kAll : 10;
  for (std::uint64_t round = 0; round < (isLong() ? 3U : 1U); ++round) {
    for (const Variant& variant : {kUsual, kFresh, kFat}) {
      expectClean(cutPower(variant, cuts, seed() + round), isLong() ? 500 : 30);
    }
  }
}

TEST(Torture, PowerCutOfARealFileSystem) {
  const std::size_t cuts = isLong() ? 200 : 8;
  for (const Variant& variant : {kUsual, kFresh}) {
    auto tally = cutRealPower(variant, cuts);
    if (!tally) GTEST_SKIP() << "Needs root, loop devices and e2fsprogs.";
    expectClean(std::move(*tally), cuts);
  }
}

TEST(Torture, DriveThatComesBack) {
  const std::size_t points = isLong() ? 150 : 12;
  for (const Variant& variant : {kUsual, kFresh, kFat}) {
    expectClean(killDrive(variant, points, seed()), isLong() ? 400 : 40);
  }
}

TEST(Torture, FlippedBits) {
  const std::size_t flips = isLong() ? 1000 : 100;
  expectClean(corrupt(flips, seed(), true), flips);
  expectClean(corrupt(flips, seed(), false), flips);
}

// An engine without one of its protections must not get through.
TEST(Torture, WouldNoticeABrokenEngine) {
  const auto cut = [](const Variant& variant, Mutation mutation) {
    return cutPower(variant, 10, seed(), broken(mutation)).violations;
  };
  EXPECT_THAT(cut(kUsual, Mutation::copiesNotFlushed),
              Contains(HasSubstr("differs from the original")));
  EXPECT_THAT(cut(kUsual, Mutation::foldersNotFlushed), Contains(HasSubstr("promised")));
  EXPECT_THAT(cut(kUsual, Mutation::volumesNotFlushed), Contains(HasSubstr("promised")));

  EXPECT_THAT(cut(kFat, Mutation::movedNotFlushed), Contains(HasSubstr("promised")));

  EXPECT_THAT(killDrive(kUsual, 20, seed(), broken(Mutation::flushErrorsLost)).violations,
              Contains(HasSubstr("promised")));

  EXPECT_THAT(killRuns(kUsual, 100, true, broken(Mutation::namedBeforeReadBack)).violations,
              Contains(HasSubstr("differs from the original")));

  const auto flip = [](Mutation mutation) {
    return corrupt(100, seed(), true, broken(mutation)).violations;
  };
  EXPECT_THAT(flip(Mutation::readBackFromMemory), Contains(HasSubstr("verified with other bytes")));
  EXPECT_THAT(flip(Mutation::cardReadOnce), Contains(HasSubstr("verified with other bytes")));
  EXPECT_THAT(flip(Mutation::moveReplaces), Contains(HasSubstr("was replaced")));
}

}  // namespace
}  // namespace Torture
