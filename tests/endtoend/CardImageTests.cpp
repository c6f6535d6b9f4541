#include "PlatformKit/Posix/UniqueFd.h"
#include "PlatformKit/Testing/TempFolder.h"
#include "tests/endtoend/Program.h"

#include <array>
#include <cerrno>
#include <ctime>
#include <fstream>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace EndToEnd {
namespace {

using nlohmann::json;
using PlatformKit::Path;
using PlatformKit::UniqueFd;
using PlatformKit::Testing::pattern;
using PlatformKit::Testing::readFile;
using PlatformKit::Testing::TempFolder;
using PlatformKit::Testing::tree;
using PlatformKit::Testing::writeFile;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using Words = std::vector<std::string>;
namespace fs = std::filesystem;

constexpr std::size_t kMebi = std::size_t{1} << 20;
constexpr std::size_t kCardSize = 24 * kMebi;
constexpr std::size_t kSector = 512;
constexpr std::size_t kFiles = 3;

Words operator+(Words first, const Words& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

/// Cards that are real devices of the kernel, mounted where nobody else sees them.
class CardImage : public testing::Test {
 protected:
  void SetUp() override {
    if (const auto missing = whatIsMissing()) GTEST_SKIP() << *missing;
    for (const Path& folder : {card_, first_, second_}) fs::create_directory(folder);
    // With room of their own, so that it is certain which drive has most of it.
    mount({"-t", "tmpfs", "-o", "size=64m,mode=777", "none"}, first_);
    mount({"-t", "tmpfs", "-o", "size=128m,mode=777", "none"}, second_);
    // What others found out about the devices that ours happen to be.
    if (fs::exists("/run/udev")) mount({"-t", "tmpfs", "none"}, "/run/udev");
  }

  // In the opposite order of their making, whatever the test came to.
  void TearDown() override {
    for (; !undo_.empty(); undo_.pop_back()) {
      const End end = run(undo_.back());
      EXPECT_EQ(end.status, 0) << testing::PrintToString(undo_.back()) << end.error;
    }
    loop_ = UniqueFd();
    if (!faults_) return;
    // Whoever else looks at new devices may keep it busy for a moment.
    EXPECT_EQ(run({"umount", "-l", served_}).status, 0);
    EXPECT_EQ(faults_->waitForEnd().status, 0);
  }

  [[nodiscard]] End run(const Words& words) const { return Program(words, setting_).waitForEnd(); }
  std::string mustRun(const Words& words) const {
    const End end = run(words);
    if (end.status != 0) throw std::runtime_error(testing::PrintToString(words) + end.error);
    return end.output.substr(0, end.output.find('\n'));
  }
  [[nodiscard]] static Words offloadOf(const std::string& source) {
    return {ZEPHRIMARK_PROGRAM, "offload", source,    "first",      "second",
            "--card-image",     "--json",  "--quiet", "--template", "{card}"};
  }

  // Clips at the start of its file system, and in its unused space what deleted ones left.
  void makeCard(std::size_t partition = 0) const {
    const Path files = temp_.path() / "files";
    for (std::size_t i = 0; i < kFiles; ++i) {
      writeFile(files / "DCIM" / (std::to_string(i) + ".MOV"), pattern(kMebi, unsigned(i)));
    }
    writeFile(backing_, "");
    fs::resize_file(backing_, kCardSize);
    if (partition > 0) {
      mustRun({"sh", "-c", "echo start=$0 | sfdisk -q $1", std::to_string(partition / kSector),
               backing_});
    }
    mustRun({"mkfs.ext4", "-q", "-F", "-b", "4096", "-O", "^has_journal", "-L", "EOS_DIGITAL", "-d",
             files, "-E", "offset=" + std::to_string(partition), backing_,
             std::to_string((kCardSize - partition) / 1024) + "k"});
    constexpr std::size_t kUnused = 8 * kMebi;
    std::fstream stream(backing_, std::ios::binary | std::ios::in | std::ios::out);
    stream.seekp(kUnused);
    stream << pattern(kCardSize - kUnused, kFiles);
  }

  // The kernel detaches the device when nobody has it open any more, even if this process is
  // killed.
  void attach(const Path& file) {
    device_ = mustRun({"losetup", "-f", "-r", "--direct-io=on", "--show", file});
    loop_ = UniqueFd(open(device_.c_str(), O_RDONLY | O_CLOEXEC));
    mustRun({"losetup", "-d", device_});
  }
  void mount(const Words& what, const Path& where) {
    mustRun(Words{"mount"} + what + Words{where});
    undo_.push_back({"umount", where});
  }
  void insertCard() {
    makeCard();
    attach(backing_);
    mount({"-o", "ro", device_}, card_);
  }

  [[nodiscard]] Path image(const json& result) const {
    return result.at("cardImage").at("path").get<std::string>();
  }
  void expectFilesVerified(const json& result) const {
    EXPECT_EQ(result.at("allVerified"), true);
    EXPECT_EQ(result.at("files"), kFiles);
    for (const json& drive : result.at("destinations")) EXPECT_EQ(drive.at("verified"), kFiles);
    for (const Path& folder : {first_, second_}) {
      EXPECT_EQ(run({"diff", "-r", folder / "EOS_DIGITAL/DCIM", "files/DCIM"}).status, 0);
    }
  }

  const TempFolder temp_;
  const Path backing_ = temp_.path() / "backing";
  const Path card_ = temp_.path() / "EOS_DIGITAL";
  const Path first_ = temp_.path() / "first";
  const Path second_ = temp_.path() / "second";
  const Path served_ = temp_.path() / "served";
  // No disk service but the kernel's.
  const Program::Setting setting_{temp_.path(),
                                  {"LANG=C.UTF-8", "PATH=/usr/sbin:/usr/bin:/sbin:/bin", "TZ=UTC0",
                                   "DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nonexistent"}};
  std::string device_;
  UniqueFd loop_;
  std::unique_ptr<Program> faults_;
  std::vector<Words> undo_;

 private:
  [[nodiscard]] std::optional<std::string> whatIsMissing() const {
    if (geteuid() != 0) return "Only the administrator can make and mount block devices.";
    if (run({"sh", "-c", "command -v losetup mkfs.ext4 sfdisk partx"}).status != 0) {
      return "Needs the packages mount, e2fsprogs and fdisk.";
    }
    if (run({"losetup", "-f"}).status != 0) return "Needs loop devices.";
    static const bool isAlone = unshare(CLONE_NEWNS) == 0 &&
                                ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    if (!isAlone) return "Needs the right to mount.";
    return std::nullopt;
  }
};

TEST_F(CardImage, HasZerosForUnreadableSectorsAndEverythingElse) {
  if (std::string(ZEPHRIMARK_FAULT_FS).empty()) GTEST_SKIP() << "Built without libfuse3.";
  if (access("/dev/fuse", R_OK | W_OK) != 0) GTEST_SKIP() << "Needs /dev/fuse.";
  // Across the end of a read, within a page, and at the very end; twelve in all.
  constexpr std::array<std::array<std::size_t, 2>, 3> kBad = {
      {{16 * kMebi / kSector - 4, 8}, {20 * kMebi / kSector + 3, 1}, {kCardSize / kSector - 3, 3}}};
  makeCard();
  fs::create_directory(served_);
  Words serving = {ZEPHRIMARK_FAULT_FS, temp_.path(), served_};
  std::string expected = readFile(backing_);
  for (const auto& [start, count] : kBad) {
    const std::size_t end = start + count;
    serving.push_back("any error=" + std::to_string(EIO) + " from=" +
                      std::to_string(start * kSector) + " to=" + std::to_string(end * kSector));
    expected.replace(start * kSector, count * kSector, count * kSector, '\0');
  }
  faults_ = std::make_unique<Program>(serving, setting_);
  faults_->readUntil([](const std::string& output) { return output == "ready\n"; });
  attach(served_ / backing_.filename());
  mount({"-o", "ro", device_}, card_);

  const End end = run(offloadOf(card_) + Words{"--checksum", "md5"});
  EXPECT_EQ(end.status, 1);
  EXPECT_THAT(end.error, HasSubstr("verified · 12 unreadable blocks saved as zeros · "));
  const json result = json::parse(end.output);
  expectFilesVerified(result);
  EXPECT_EQ(result.at("cardImage").at("verified"), true);
  EXPECT_EQ(result.at("cardImage").at("size"), kCardSize);
  EXPECT_EQ(result.at("cardImage").at("unreadableBlocks"), 12);
  EXPECT_EQ(image(result).parent_path(), second_ / "EOS_DIGITAL/Card Image");
  EXPECT_TRUE(readFile(image(result)) == expected);

  ASSERT_EQ(result.at("hashLists").size(), 2U);
  const std::string checksum = mustRun({"md5sum", image(result)}).substr(0, 32);
  EXPECT_THAT(readFile(result.at("hashLists").at(0)), Not(HasSubstr("Card Image")));
  EXPECT_THAT(readFile(result.at("hashLists").at(1)),
              AllOf(HasSubstr(">Card Image/" + image(result).filename().native() + "</path>"),
                    HasSubstr(">" + checksum + "</md5>")));
}

TEST_F(CardImage, IsOfTheWholeDiskAndOnlyAWholeCardHasOne) {
  makeCard(kMebi);
  attach(backing_);
  mustRun({"partx", "-u", device_});
  undo_.push_back({"sh", "-c",
                   "for i in 1 2 3 4 5 6 7 8 9; do partx -d $0 && exit; sleep 0.1; done; exit 1",
                   device_});
  mount({"-o", "ro", device_ + "p1"}, card_);

  const End listed = run({ZEPHRIMARK_PROGRAM, "disks", "--all", "--json"});
  EXPECT_EQ(listed.status, 0) << listed.error;
  std::istringstream lines(listed.output);
  json disk;
  for (std::string line; std::getline(lines, line);) {
    json object = json::parse(line);
    if (object.at("device") == device_) disk = std::move(object);
  }
  ASSERT_TRUE(disk.is_object()) << listed.output;
  EXPECT_EQ(disk.at("image"), true);
  EXPECT_EQ(disk.at("size"), kCardSize);
  EXPECT_EQ(disk.at("volumes"), json({"EOS_DIGITAL"}));

  for (const std::string folder : {"EOS_DIGITAL/DCIM", "files"}) {
    const End end = run(offloadOf(folder));
    EXPECT_EQ(end.status, 2);
    EXPECT_EQ(end.output, "");
    EXPECT_THAT(end.error, EndsWith(" is a folder, not a whole card. A card image needs a card as "
                                    "the source.\n"));
    EXPECT_EQ(tree(first_) + tree(second_), Words{});
  }

  const End end = run(offloadOf(card_));
  EXPECT_EQ(end.status, 0) << end.error;
  const json result = json::parse(end.output);
  expectFilesVerified(result);
  EXPECT_EQ(result.at("cardImage").at("unreadableBlocks"), 0);
  EXPECT_TRUE(readFile(image(result)) == readFile(backing_));
}

TEST_F(CardImage, ThatMayNotBeReadStopsTheOffloadBeforeAnythingIsCopied) {
  insertCard();
  Words offload = offloadOf(card_);
  offload.front() = PlatformKit::Testing::programForEverybody(ZEPHRIMARK_PROGRAM, temp_);
  // Nothing to be found, not even a program that could ask for a password.
  const End end = run(Words{"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups", "env",
                            "PATH=/nonexistent"} +
                      offload);
  EXPECT_EQ(end.status, 3);
  EXPECT_EQ(end.output, "");
  EXPECT_THAT(end.error, EndsWith("Authorization to read " + device_ +
                                  " was denied. Turn off the card image to offload without it.\n"));
  for (const Path& folder : {first_, second_}) {
    for (const std::string& item : tree(folder)) EXPECT_THAT(item, EndsWith("/"));
  }
}

TEST_F(CardImage, OfTheSameMinuteIsKeptAndTheFilesAreVerifiedAllTheSame) {
  insertCard();
  const json earlier = json::parse(run(offloadOf(card_)).output);
  const Path images = image(earlier).parent_path();
  ASSERT_THAT(tree(images), ElementsAre(image(earlier).filename().native()));
  // This minute may end before the next run starts, but not the one after it.
  for (const std::time_t minute : {0, 60}) {
    const std::time_t time = std::time(nullptr) + minute;
    std::tm parts{};
    std::array<char, 64> name{};
    std::strftime(name.data(), name.size(), "EOS_DIGITAL_%Y-%m-%d_%H%M.img",
                  gmtime_r(&time, &parts));
    if (!fs::exists(images / name.data())) writeFile(images / name.data(), "precious");
  }
  const Words before = tree(images);

  const End end = run(offloadOf(card_));
  EXPECT_EQ(end.status, 1);
  EXPECT_THAT(end.error, HasSubstr("Not saved: An image with this name is already there\n"));
  EXPECT_THAT(end.error, HasSubstr("3 of 3 verified · 3 already there\n"));
  const json result = json::parse(end.output);
  expectFilesVerified(result);
  EXPECT_EQ(result.at("cardImage").at("verified"), false);
  EXPECT_EQ(result.at("cardImage").at("reason"), "An image with this name is already there");
  EXPECT_EQ(tree(images), before);
  EXPECT_TRUE(readFile(image(earlier)) == readFile(backing_));
  for (const std::string& name : before) {
    if (images / name == image(earlier)) continue;
    EXPECT_EQ(readFile(images / name), "precious");
  }
}

}  // namespace
}  // namespace EndToEnd
