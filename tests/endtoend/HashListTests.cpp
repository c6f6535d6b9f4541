#include "PlatformKit/Testing/TempFolder.h"
#include "tests/endtoend/Program.h"

#include <map>
#include <regex>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace EndToEnd {
namespace {

using PlatformKit::Path;
using PlatformKit::Testing::readFile;
using PlatformKit::Testing::TempFolder;
using PlatformKit::Testing::writeFile;
using testing::EndsWith;
using Words = std::vector<std::string>;

// What a list says about each path: "original" or "verified".
std::map<std::string, std::string> actionsIn(const std::string& list, const std::string& checksum) {
  const std::regex row("<path [^>]*>([^<]*)</path>\\s*<" + checksum + " action=\"([a-z]+)\"");
  std::map<std::string, std::string> actions;
  for (std::sregex_iterator it(list.begin(), list.end(), row), end; it != end; ++it) {
    EXPECT_TRUE(actions.emplace((*it)[1], (*it)[2]).second) << "twice: " << (*it)[1];
  }
  return actions;
}

class HashLists : public testing::Test {
 protected:
  [[nodiscard]] End run(const Words& words) const {
    return Program(words, {temp_.path(), {"LANG=C.UTF-8", "PATH=/usr/bin:/bin"}}).waitForEnd();
  }
  // All of them, so that what a schema says appears in one piece.
  void expectValid(const Words& files, const std::string& schema) const {
    Words command = {"xmllint", "--nonet", "--noout", "--schema", ZEPHRIMARK_SCHEMAS "/" + schema};
    command.insert(command.end(), files.begin(), files.end());
    const End end = run(command);
    EXPECT_EQ(end.status, 0) << end.error;
  }

  const TempFolder temp_;
};

TEST_F(HashLists, OfRepeatedOffloadsAreValidAndKnowWhatEarlierOnesHad) {
  if (run({"sh", "-c", "command -v xmllint"}).status != 0) {
    GTEST_SKIP() << "Needs the package libxml2-utils.";
  }
  const Words names = {"a & b <c>.mov",
                       "\"quoted\" 'twice' ]]>.mov",
                       "not UTF-8 \xFF\xC3.mov",
                       "bell\a line\r\n\x7F.mov",
                       "100%\1.mov",
                       "\uFFFE 🎬.mov",
                       " blank ",
                       std::string(250, 'n') + "/" + std::string(255, 'f')};
  for (const std::string& name : names) writeFile(temp_.path() / "A001" / name, name);

  Words lists;
  std::map<std::string, std::string> known;
  for (const std::string checksum : {"xxh64", "md5", "xxh64", "md5"}) {
    SCOPED_TRACE(lists.size());
    const End end =
        run({ZEPHRIMARK_PROGRAM, "offload", "A001", "drive", "--json", "--quiet", "--checksum",
             checksum, "--template", "Tag & 'Nacht' " + std::string(240, 'd')});
    ASSERT_EQ(end.status, 0) << end.error;
    const auto written = nlohmann::json::parse(end.output).at("hashLists");
    ASSERT_EQ(written.size(), 1U);
    lists.push_back(written.at(0));
    const auto actions = actionsIn(readFile(lists.back()), checksum);
    EXPECT_GT(actions.size(), names.size()) << "the copies and a report";
    for (const auto& [path, action] : known) {
      EXPECT_TRUE(actions.contains(path)) << path;
    }
    for (const auto& [path, action] : actions) {
      EXPECT_EQ(action, known.contains(path) ? "verified" : "original") << path;
    }
    known = actions;
  }

  const Path folder = Path(lists.front()).parent_path();
  const std::string chain = folder / "ascmhl_chain.xml";
  expectValid(lists, "ASCMHL.xsd");
  expectValid({chain}, "ASCMHLDirectory__combined.xsd");
  for (const std::string& list : lists) {
    EXPECT_EQ(Path(list).parent_path(), folder);
    EXPECT_THAT(Path(list).filename().native(), EndsWith("Z.mhl"));
  }
}

}  // namespace
}  // namespace EndToEnd
