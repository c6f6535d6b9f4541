#include "PlatformKit/Testing/TempFolder.h"
#include "tests/endtoend/Program.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace EndToEnd {
namespace {

using PlatformKit::Testing::readFile;
using PlatformKit::Testing::TempFolder;
using PlatformKit::Testing::writeFile;
using Words = std::vector<std::string>;

class German : public testing::Test {
 protected:
  German() { writeFile(card_ / "clip.mov", "content"); }

  [[nodiscard]] End run(const Words& arguments) const {
    Words command = {ZEPHRIMARK_PROGRAM};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return Program(command, {temp_.path(), environment_}).waitForEnd();
  }

  const TempFolder temp_;
  const PlatformKit::Path card_ = temp_.path() / "A001";
  const PlatformKit::Path drive_ = temp_.path() / "drive";
  Words environment_ = {"LANG=C.UTF-8", "LANGUAGE=de_AT:en", "PATH=/usr/bin:/bin"};
};

testing::AssertionResult says(const std::string& text, const std::string& part) {
  const bool found = text.find(part) != std::string::npos;
  return (found ? testing::AssertionSuccess() : testing::AssertionFailure()) << text;
}

TEST_F(German, HelpAndWrongArguments) {
  const End help = run({"offload", "--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_TRUE(says(help.output, "Aufruf: zephrimark offload [OPTIONEN] QUELLE ZIEL [ZIEL [ZIEL]]"));
  EXPECT_TRUE(says(help.output, "\nOptionen:\n  -h,--help "));
  EXPECT_FALSE(says(help.output, "REQUIRED"));
  const End missing = run({"offload", card_});
  EXPECT_EQ(missing.status, 2);
  EXPECT_EQ(missing.error, "zephrimark: ZIEL fehlt. Siehe zephrimark --help.\n");
}

TEST_F(German, AVerifiedOffloadAndItsEnglishRecords) {
  const End end = run({"offload", card_, drive_, "--template", "day", "--read-once"});
  EXPECT_EQ(end.status, 0);
  EXPECT_TRUE(
      says(end.error, "Kopiert auf 1 Laufwerk und prüft jede Kopie: 0\u00A0%, 0 von 1 Datei"));
  EXPECT_TRUE(says(end.output, "✓ Sicherung geprüft\n"));
  EXPECT_TRUE(says(end.output, "  Dateien    1 · 7\u00A0Bytes\n  Dauer      0\u00A0s"));
  const std::size_t start = end.output.find("Berichte\n  ") + 11;
  const std::string report = end.output.substr(start, end.output.find('\n', start) - start);
  EXPECT_TRUE(says(readFile(report), "Every file was copied and verified on every drive."));
  EXPECT_TRUE(says(readFile(report), "7 bytes"));
}

TEST_F(German, AFailureForPeopleAndForMachines) {
  writeFile(drive_ / "day/clip.mov", "another clip");
  const End end = run({"offload", card_, drive_, "--template", "day", "--json"});
  EXPECT_EQ(end.status, 1);
  EXPECT_TRUE(says(end.error, "✗ Einige Dateien sind nicht geprüft\n"));
  EXPECT_TRUE(says(end.error, "Im Zielordner ist bereits eine andere Datei mit diesem Namen\n"));
  const std::string last = end.output.substr(end.output.rfind('\n', end.output.size() - 2) + 1);
  EXPECT_EQ(nlohmann::json::parse(last).at("failed")[0].at("outcomes")[0].at("reason"),
            "A different file with this name is already in the destination folder");
  const End missing = run({"offload", temp_.path() / "A002", drive_});
  EXPECT_EQ(missing.status, 3);
  EXPECT_TRUE(says(missing.error,
                   "A002“ gibt es weder Karte noch Ordner: Datei oder Ordner nicht gefunden."));
}

TEST_F(German, IsEnglishWhereItsLettersCannotBeShown) {
  environment_ = {"LC_ALL=C", "LANGUAGE=de", "PATH=/usr/bin:/bin"};
  EXPECT_TRUE(says(run({"--help"}).output, "Usage: zephrimark"));
}

}  // namespace
}  // namespace EndToEnd
