// Cards with more, longer and deeper files than any card has. Time is told, never tested; memory
// must stay within bounds. ZEPHRIMARK_TORTURE asks for the full sizes.
#include "PlatformKit/Posix/UniqueFd.h"
#include "PlatformKit/Testing/TempFolder.h"
#include "tests/realfaults/Drives.h"
#include "tests/scale/Measured.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

namespace Scale {
namespace {

using PlatformKit::Path;
using PlatformKit::Testing::pattern;
using PlatformKit::Testing::writeFile;
using RealFaults::Disk;
using RealFaults::FaultyFolder;
using testing::HasSubstr;
namespace fs = std::filesystem;

constexpr double kMebi = 1 << 20;

bool isLong() {
  return std::getenv("ZEPHRIMARK_TORTURE") != nullptr;
}

class InMemory final : public testing::Environment {
 public:
  void SetUp() override {
    if (fs::exists("/dev/shm")) setenv("TMPDIR", "/dev/shm", 0);
  }
};
const auto* const kInMemory = testing::AddGlobalTestEnvironment(new InMemory);

// One buffer for each destination, for the transfer and for the card's second reading; the program
// and its libraries; and what is remembered of each file.
double allowedMiB(std::size_t destinations, std::size_t files) {
  constexpr double kBuffer = 8;
  constexpr double kProgram = 24;
  constexpr double kFile = 2000;
  return static_cast<double>(destinations + 2) * kBuffer + kProgram +
         static_cast<double>(files) * kFile / kMebi;
}

class Scale : public testing::Test {
 protected:
  // Runs and tells what it took.
  Measured run(const std::string& what, const std::vector<Path>& destinations, std::size_t files) {
    Measured measured = offload(card_, destinations, temp_.path());
    const double allowed = allowedMiB(destinations.size(), files);
    std::printf("%-40s %7.1f s, processor %6.1f s, %4.0f MiB of %4.0f allowed\n", what.c_str(),
                measured.seconds, measured.cpuSeconds, measured.peakMiB, allowed);
    std::fflush(stdout);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    EXPECT_LE(measured.peakMiB, allowed) << what;
#endif
    return measured;
  }
  void expectAllVerified(const Measured& measured, std::size_t files) const {
    EXPECT_EQ(measured.status, 0) << measured.error;
    const auto result = nlohmann::json::parse(measured.output);
    for (const auto& drive : result.at("destinations")) EXPECT_EQ(drive.at("verified"), files);
  }

  // `files` small files, so many in a folder.
  void fill(std::size_t files, std::size_t perFolder) const {
    for (std::size_t i = 0; i < files; ++i) {
      writeFile(card_ / ("FOLDER" + std::to_string(i / perFolder)) /
                    ("IMG_" + std::to_string(i) + ".JPG"),
                std::to_string(i));
    }
  }

  const PlatformKit::Testing::TempFolder temp_;
  const Path card_ = temp_.path() / "A001";
  const Path first_ = temp_.path() / "first";
  const Path second_ = temp_.path() / "second";
  const Path third_ = temp_.path() / "third";
};

TEST_F(Scale, ManyFilesTakeTimeAndMemoryInProportion) {
  const std::vector<std::size_t> counts =
      isLong() ? std::vector<std::size_t>{20'000, 200'000} : std::vector<std::size_t>{500, 5'000};
  for (const std::size_t files : counts) {
    for (const Path& folder : {card_, first_, second_}) fs::remove_all(folder);
    fill(files, 1'000);
    const std::string what = std::to_string(files) + " files to two drives";
    expectAllVerified(run(what, {first_, second_}, files), files);
    expectAllVerified(run(what + ", again", {first_, second_}, files), files);
  }
}

TEST_F(Scale, ManyFilesInOneFolder) {
  const std::size_t files = isLong() ? 10'000 : 2'000;
  fill(files, files);
  expectAllVerified(run(std::to_string(files) + " files in one folder", {first_}, files), files);
}

// Zeros, which the drive compresses: only the program works with all of them.
TEST_F(Scale, AFileLongerThanNumbersOf32BitsCanTell) {
  if (const auto why = Disk::whyNone("btrfs")) GTEST_SKIP() << *why;
  if (!isLong()) GTEST_SKIP() << "Copies 16 GiB, which ./test --torture does.";
  constexpr std::uintmax_t kSize = (std::uintmax_t{16} << 30U) + 5;
  fs::create_directories(card_);
  writeFile(card_ / "long.mov", "");
  fs::resize_file(card_ / "long.mov", kSize);
  const Path image = temp_.path() / "drive.img";
  writeFile(image, "");
  fs::resize_file(image, kSize + (std::uintmax_t{2} << 30U));
  const Disk disk(image, first_, "btrfs");
  RealFaults::mustRun("mount -o remount,compress-force=lzo '" + first_.native() + "'");
  expectAllVerified(run(std::to_string(kSize) + " bytes in one file", {first_}, 1), 1);
  EXPECT_EQ(fs::file_size(first_ / "A001/long.mov"), kSize);
}

// The longest path that the system takes has 4095 bytes; below a folder that is held there is more.
TEST_F(Scale, PathsThatAreTooLongOnADriveAreVerifiedAllTheSame) {
  Path folder = card_;
  while (folder.native().size() < 3'900 - 101) folder /= std::string(100, 'f');
  const auto nameFor = [&](std::size_t length) {
    return std::string(length - folder.native().size() - 1, 'n');
  };
  const std::string fitting = nameFor(3'950);
  const std::string longer = nameFor(4'020);
  writeFile(folder / fitting, "fits");
  writeFile(folder / longer, "does not");
  writeFile(card_ / "other.mov", "other");
  const Path shallow = first_ / std::string(70, 'd');

  const Measured measured = run("paths of 4000 bytes", {shallow, second_}, 3);
  EXPECT_EQ(measured.status, 0);
  const auto result = nlohmann::json::parse(measured.output);
  EXPECT_EQ(result.at("destinations").at(0).at("verified"), 3);
  const Path below = folder.lexically_relative(card_);
  EXPECT_EQ(PlatformKit::Testing::readFile(shallow / "A001" / below / fitting), "fits");
  EXPECT_EQ(PlatformKit::Testing::readFile(second_ / "A001" / below / longer), "does not");
}

TEST_F(Scale, ASlowDriveAmongThreeKeepsMemoryBounded) {
  if (const auto why = RealFaults::whyNoFaults()) GTEST_SKIP() << *why;
  const std::size_t mebibytes = isLong() ? 128 : 16;
  fs::create_directories(card_);
  std::ofstream clip(card_ / "a.mov", std::ios::binary);
  for (std::size_t i = 0; i < mebibytes; ++i) clip << pattern(1U << 20U, unsigned(i));
  clip.close();
  expectAllVerified(run("three fast drives", {first_, second_, third_}, 1), 1);
  for (const Path& folder : {first_, second_, third_}) fs::remove_all(folder);
  // Of each mebibyte, about fifty times what it takes a fast one.
  const FaultyFolder slow(third_, "write at=.zmpart delay=400000");
  expectAllVerified(run("three drives, one slow", {first_, second_, third_}, 1), 1);
  EXPECT_GT(slow.concerned(), 0);
}

}  // namespace
}  // namespace Scale
