#include "tests/realfaults/CardAndDrives.h"

#include <cstdlib>
#include <filesystem>

namespace RealFaults {
namespace {

using EndToEnd::Program;
using PlatformKit::Testing::pattern;
using PlatformKit::Testing::readFile;
using PlatformKit::Testing::tree;
using PlatformKit::Testing::writeFile;
namespace fs = std::filesystem;

class InMemory final : public testing::Environment {
 public:
  void SetUp() override {
    if (fs::exists("/dev/shm")) setenv("TMPDIR", "/dev/shm", 0);
  }
};
const auto* const kInMemory = testing::AddGlobalTestEnvironment(new InMemory);

// Of one bit that is wrong too much would be shown.
bool isEqual(const Path& copy, const std::string& content) {
  return readFile(copy) == content;
}

}  // namespace

CardAndDrives::CardAndDrives() {
  // The second one is longer than what is copied at once.
  files_ = {{"CLIPS/a.mov", pattern(300'000, 1)},
            {"CLIPS/b.mov", pattern(9'000'000, 2)},
            {"CLIPS/c.mov", pattern(100'000, 3)},
            {"d.txt", "d"},
            {"empty", ""}};
}

void CardAndDrives::SetUp() {
  if (const auto why = whyNoFaults()) GTEST_SKIP() << *why;
  for (const Path& folder : {first_, second_}) fs::create_directories(folder);
}

std::unique_ptr<Program> CardAndDrives::start() const {
  const Program::Setting setting{temp_.path(),
                                 {"LANG=C.UTF-8", "PATH=/usr/sbin:/usr/bin:/sbin:/bin", "TZ=UTC0",
                                  "DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nonexistent"}};
  return std::make_unique<Program>(
      std::vector<std::string>{ZEPHRIMARK_PROGRAM, "offload", card_, first_, second_, "--json",
                               "--quiet", "--template", "{card}"},
      setting);
}

Ended CardAndDrives::endOf(Program& offload) {
  const EndToEnd::End end = offload.waitForEnd();
  return {end.status, end.error, nlohmann::json::parse(end.output, nullptr, false)};
}

void CardAndDrives::fill(const Path& folder) const {
  for (const auto& [name, content] : files_) writeFile(folder / name, content);
}

void CardAndDrives::expectWhole(const Path& drive) const {
  for (const auto& [name, content] : files_) {
    EXPECT_TRUE(isEqual(drive / "A001" / name, content)) << name;
  }
  EXPECT_EQ(expectNothingWrong(drive), 0U);
}

std::size_t CardAndDrives::expectNothingWrong(const Path& drive) const {
  std::size_t temporary = 0;
  for (const std::string& item : tree(drive)) {
    if (item.ends_with(".zmpart")) ++temporary;
    const auto file = item.starts_with("A001/") ? files_.find(item.substr(5)) : files_.end();
    if (file == files_.end()) continue;
    EXPECT_TRUE(isEqual(drive / item, file->second)) << item;
  }
  return temporary;
}

void CardAndDrives::expectCardUntouched(const Path& card) const {
  std::size_t files = 0;
  for (const std::string& item : tree(card)) {
    if (item.ends_with('/')) continue;
    ++files;
    ASSERT_TRUE(files_.contains(item)) << item;
    EXPECT_TRUE(isEqual(card / item, files_.at(item))) << item;
  }
  EXPECT_EQ(files, files_.size());
}

}  // namespace RealFaults
