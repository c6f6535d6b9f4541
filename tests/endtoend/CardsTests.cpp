#include "PlatformKit/Testing/TempFolder.h"
#include "tests/endtoend/Program.h"

#include <cstdint>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace EndToEnd {
namespace {

using nlohmann::json;

class Cards : public testing::Test {
 protected:
  // Nobody else sees the mounts, and they vanish with the program.
  [[nodiscard]] End run(const std::string& mounts, const std::vector<std::string>& words) const {
    std::vector<std::string> command = {"unshare", "-m", "sh", "-ec",
                                        mounts + R"(; exec "$0" "$@")"};
    command.insert(command.end(), words.begin(), words.end());
    return Program(command, setting_).waitForEnd();
  }

  const PlatformKit::Testing::TempFolder temp_;
  const Program::Setting setting_{
      temp_.path(), {"LANG=C.UTF-8", "PATH=/usr/sbin:/usr/bin:/sbin:/bin", "TERM=xterm"}};
};

TEST_F(Cards, ListsDrivesWithTheirSizesAndDoesNotWaitForADeadServer) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "The leak checker waits for every thread, also for one that a dead server keeps.";
#endif
  // Two images, of which one is locked, and a server that has never answered anything. Its file
  // system is mounted by the call that FUSE's own programs use; by the newer ones its type loses
  // its name.
  const std::string mounts =
      "mkdir -p nas My\\ Drive locked; "
      "for name in a b; do truncate -s 8M $name; mkfs.ext4 -q -F $name; done; "
      "mount -o loop a My\\ Drive; mount -o loop,ro b locked; exec 3<>/dev/fuse; "
      "LIBMOUNT_FORCE_MOUNT2=always mount -i -t fuse.sshfs -o "
      "fd=3,rootmode=40000,user_id=0,group_id=0 nas:/x nas";
  const End possible = run(mounts, {"true"});
  if (possible.status != 0) GTEST_SKIP() << "Needs the right to mount: " << possible.error;
  const std::string drive = temp_.path() / "My Drive";
  const std::string server = temp_.path() / "nas";

  const End listed = run(mounts, {ZEPHRIMARK_PROGRAM, "cards", "--json"});
  EXPECT_EQ(listed.status, 0) << listed.error;
  std::map<std::string, json> here;  // beside what this computer itself may have
  std::istringstream lines(listed.output);
  for (std::string line; std::getline(lines, line);) {
    json volume = json::parse(line);
    const std::string path = volume.at("path");
    if (path.starts_with(temp_.path().native())) here[path] = std::move(volume);
  }
  ASSERT_EQ(here.size(), 2U) << listed.output;
  const std::uint64_t capacity = here.at(drive).at("capacity");
  const std::uint64_t available = here.at(drive).at("available");
  EXPECT_TRUE(available > 0 && available <= capacity && capacity <= 8U << 20U) << here.at(drive);
  const json expected = {{"type", "volume"},      {"name", "My Drive"}, {"path", drive},
                         {"card", false},         {"drive", true},      {"capacity", capacity},
                         {"available", available}};
  EXPECT_EQ(here.at(drive), expected);
  EXPECT_EQ(here.at(server).at("drive"), true);
  EXPECT_EQ(here.at(server).at("capacity"), 0);

  const End table = run(mounts, {ZEPHRIMARK_PROGRAM, "cards"});
  EXPECT_EQ(table.status, 0) << table.error;
  EXPECT_TRUE(table.output.starts_with("NAME ")) << table.output;
  EXPECT_NE(table.output.find("  drive  " + drive + "\n"), std::string::npos) << table.output;
  EXPECT_NE(table.output.find("?  drive  " + server + "\n"), std::string::npos) << table.output;
  EXPECT_EQ(table.output.find("locked"), std::string::npos) << table.output;
}

TEST_F(Cards, WithoutAnySaysSoInOneSentence) {
  // An empty list of mounts hides whatever this computer has.
  const std::string hide = "touch none; mount --bind none /proc/$$/mountinfo";
  const End end = run(hide, {ZEPHRIMARK_PROGRAM, "cards"});
  if (end.status != 0) GTEST_SKIP() << "Needs the right to mount: " << end.error;
  EXPECT_EQ(end.output,
            "No card and no drive is mounted. zephrimark disks lists what is connected.\n");
  EXPECT_EQ(run(hide, {ZEPHRIMARK_PROGRAM, "cards", "--json"}).output, "");
}

}  // namespace
}  // namespace EndToEnd
