#include "PlatformKit/Testing/TempFolder.h"
#include "tests/endtoend/Program.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <clocale>
#include <csignal>
#include <ctime>
#include <cwchar>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <unistd.h>

namespace EndToEnd {
namespace {

using namespace std::chrono_literals;
using nlohmann::json;
using PlatformKit::Path;
using PlatformKit::Testing::pattern;
using PlatformKit::Testing::readFile;
using PlatformKit::Testing::TempFolder;
using PlatformKit::Testing::tree;
using PlatformKit::Testing::writeFile;
using Words = std::vector<std::string>;
namespace fs = std::filesystem;

constexpr const char* kDifferentFile =
    "A different file with this name is already in the destination folder";
constexpr const char* kOnTheCard = " is on the card itself. Choose a different drive.\n";

Words operator+(Words first, const Words& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

testing::AssertionResult says(const std::string& text, const std::string& part) {
  const bool found = text.find(part) != std::string::npos;
  return (found ? testing::AssertionSuccess() : testing::AssertionFailure()) << text;
}

// A sentence, at most with a hint in a line below it.
void expectRefusal(const End& end, int status, const std::string& sentence) {
  EXPECT_EQ(end.status, status);
  EXPECT_EQ(end.output, "");
  EXPECT_TRUE(says(end.error.substr(0, end.error.find('\n') + 1), sentence));
  EXPECT_LE(std::count(end.error.begin(), end.error.end(), '\n'), 2) << end.error;
}

// Each line must be an object: all but the last about progress, the last the result.
struct Objects {
  Words phases;
  json result;
};

Objects objectsIn(const std::string& output) {
  Objects objects;
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) {
    EXPECT_TRUE(objects.result.is_null()) << "behind the result: " << line;
    json object = json::parse(line);
    if (object.at("type") == "progress") {
      objects.phases.push_back(object.at("phase"));
    } else {
      EXPECT_EQ(object.at("type"), "result");
      objects.result = std::move(object);
    }
  }
  return objects;
}

std::string timeText(const char* format, int hoursEast = 0) {
  const std::time_t there = std::time(nullptr) + hoursEast * 3600;
  std::tm parts{};
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), format, gmtime_r(&there, &parts));
  return text.data();
}

// Takes no room on the card and, compared by MD5, a second or more for each gigabyte.
void makeLongFile(const Path& path, std::uintmax_t size) {
  writeFile(path, "");
  fs::resize_file(path, size);
}

// In JSON far longer than a pipe holds, so that the program waits for whoever reads.
std::string longName() {
  Path name;
  for (int i = 0; i < 12; ++i) name /= std::string(250, '\1');
  return name;
}

class Offload : public testing::Test {
 protected:
  Offload() { fs::create_directory(card_); }

  [[nodiscard]] static Words command(const Words& arguments) {
    return Words{ZEPHRIMARK_PROGRAM, "offload"} + arguments;
  }
  [[nodiscard]] End run(const Words& words) const { return Program(words, setting_).waitForEnd(); }
  [[nodiscard]] End offload(const Words& arguments) const { return run(command(arguments)); }

  // Root may read everything, so where it runs the tests the program gets nobody's rights.
  [[nodiscard]] End offloadAsOrdinaryUser(const Words& arguments) const {
    if (geteuid() != 0) return offload(arguments);
    fs::create_directories(first_);
    fs::permissions(first_, fs::perms(0777));
    const Path program = PlatformKit::Testing::programForEverybody(ZEPHRIMARK_PROGRAM, temp_);
    return run(
        Words{"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups", program, "offload"} +
        arguments);
  }

  // The only folder in a folder.
  [[nodiscard]] static Path day(const Path& destination) {
    return destination / tree(destination).at(0);
  }
  [[nodiscard]] static Path landed(const Path& destination) { return day(destination) / "A001"; }

  // What a run leaves beside the copies.
  [[nodiscard]] static bool isRecord(const std::string& item) {
    return item.find("Offload Report ") != std::string::npos ||
           item.find("ascmhl/") != std::string::npos;
  }

  // These copies lie where they should and nothing else but records does, temporary files included.
  void expectCopied(const Path& destination, Words names) const {
    const Path folder = landed(destination);
    Words found = tree(folder);
    std::erase_if(found,
                  [](const std::string& name) { return name.ends_with('/') || isRecord(name); });
    std::sort(names.begin(), names.end());
    EXPECT_EQ(found, names);
    for (const std::string& name : found) {
      EXPECT_EQ(run({"cmp", folder / name, card_ / name}).status, 0) << name;
      EXPECT_EQ(fs::last_write_time(folder / name), fs::last_write_time(card_ / name)) << name;
    }
  }

  const TempFolder temp_;
  const Path card_ = temp_.path() / "A001";
  const Path first_ = temp_.path() / "first";
  const Path second_ = temp_.path() / "second";
  const Path third_ = temp_.path() / "third";
  // So far east that its date is never that of Greenwich.
  Program::Setting setting_{
      temp_.path(),
      {"LANG=C.UTF-8", "PATH=/usr/sbin:/usr/bin:/sbin:/bin", "TERM=xterm", "TZ=EAST-24"}};
};

TEST_F(Offload, CopiesNamesContentsAndDatesToEveryFolder) {
  const Words names = {"DCIM/100CANON/IMG_0001.CR3", "-rf",           "new\nline", ".hidden",
                       "\"quoted\" 'twice' \\",      "a\xFF\xC3.mov", "empty",     "🎬 Klappe.mov",
                       std::string(255, 'n')};
  auto date = fs::last_write_time(card_) - 20 * 365 * 24h;
  for (const std::string& name : names) {
    writeFile(card_ / name, name == "empty" ? "" : pattern(100'000 + name.size()));
    fs::last_write_time(card_ / name, date += 24h + 1234567ns);
  }
  for (const char* name : {".DS_Store", "DCIM/._IMG_0001.CR3", ".Trashes/501/old.mov",
                           "ascmhl/0001.mhl", "System Volume Information/IndexerVolumeGuid"}) {
    writeFile(card_ / name, "not the camera's");
  }
  fs::create_symlink("empty", card_ / "link");
  const Words card = tree(card_);

  const std::string before = timeText("%Y-%m-%d/", 24);
  const End end = offload({card_, first_, second_});
  const std::string after = timeText("%Y-%m-%d/", 24);
  EXPECT_EQ(end.status, 0) << end.error;
  EXPECT_TRUE(says(end.output, "✓ Offload verified\n"));
  EXPECT_TRUE(says(end.output, "identical on both drives"));
  EXPECT_TRUE(says(end.output, "9 of 9 verified\n"));
  expectCopied(first_, names);
  expectCopied(second_, names);
  EXPECT_TRUE(tree(first_).at(0) == before || tree(first_).at(0) == after) << day(first_);
  EXPECT_EQ(tree(card_), card);
}

TEST_F(Offload, SecondRunReadsEveryCopyBackAndRewritesNone) {
  writeFile(card_ / "CLIP/a.mov", pattern(100'000));
  writeFile(card_ / "b.mov", "b");
  const Words arguments = {card_, first_, second_};
  ASSERT_EQ(offload(arguments).status, 0);
  const auto identities = [&] {
    std::vector<std::array<std::uint64_t, 3>> list;
    for (const std::string& item : tree(temp_.path())) {
      // The second run adds records of its own, and so changes their folder.
      if (isRecord(item) || (temp_.path() / item) == landed(first_) / "" ||
          (temp_.path() / item) == landed(second_) / "") {
        continue;
      }
      struct stat facts {};
      EXPECT_EQ(lstat((temp_.path() / item).c_str(), &facts), 0);
      list.push_back({facts.st_ino, static_cast<std::uint64_t>(facts.st_ctim.tv_sec),
                      static_cast<std::uint64_t>(facts.st_ctim.tv_nsec)});
    }
    return list;
  };
  const auto before = identities();
  const End again = offload(arguments);
  EXPECT_EQ(again.status, 0) << again.error;
  for (const Path& folder : {landed(first_), landed(second_)}) {
    EXPECT_TRUE(says(again.output, folder.native() + "\n    2 of 2 verified · 2 already there\n"));
  }
  EXPECT_EQ(identities(), before);

  // Same size, same date, another content: only reading it tells.
  const Path copy = landed(second_) / "CLIP/a.mov";
  const auto date = fs::last_write_time(copy);
  writeFile(copy, pattern(100'000, 2));
  fs::last_write_time(copy, date);
  const End damaged = offload(arguments);
  EXPECT_EQ(damaged.status, 1);
  EXPECT_TRUE(says(damaged.output, "The copy didn't match the original"));
  EXPECT_TRUE(readFile(copy) == pattern(100'000, 2));
}

TEST_F(Offload, LandsWhereTheTemplateSaysAndComparesByTheChecksumAskedFor) {
  writeFile(card_ / "DCIM/100CANON/a.cr3", pattern(100'000));
  const End md5 = offload({card_, first_, "--template", "../{project}/{camera}_{card}", "--project",
                           "Der Film", "--checksum", "md5"});
  EXPECT_EQ(md5.status, 0) << md5.error;
  EXPECT_TRUE(says(md5.output, "Checksum  MD5, card read twice\n"));
  EXPECT_TRUE(fs::exists(first_ / "Der Film/Canon_A001/DCIM/100CANON/a.cr3"));
  const End sha = offload({"--checksum=sha256", "--read-once", card_, second_});
  EXPECT_EQ(sha.status, 0) << sha.error;
  EXPECT_TRUE(says(sha.output, "Checksum  SHA-256\n"));
  expectCopied(second_, {"DCIM/100CANON/a.cr3"});
}

TEST_F(Offload, FollowsRelativePathsTrailingSlashesAndLinks) {
  writeFile(card_ / "a.mov", "a");
  fs::create_directory(second_);
  fs::create_directory_symlink(second_, temp_.path() / "drive");
  fs::create_directory_symlink(card_, temp_.path() / "card");
  EXPECT_EQ(offload({"./A001/", "new/../first//"}).status, 0);
  expectCopied(first_, {"a.mov"});
  EXPECT_EQ(offload({"card", "drive"}).status, 0);
  expectCopied(second_, {"a.mov"});
}

TEST_F(Offload, WhatCannotBeMeantOrStartedIsToldAndNothingIsMade) {
  writeFile(card_ / "DCIM/a.mov", "a");
  writeFile(temp_.path() / "file", "");
  for (const char* folder : {"first", "empty"}) fs::create_directory(temp_.path() / folder);
  fs::create_directory_symlink(first_, temp_.path() / "link");
  fs::create_directory_symlink(card_ / "DCIM", temp_.path() / "dcim");
  struct Case {
    Words arguments;
    int status;
    std::string told;
  };
  const std::vector<Case> cases = {
      {{}, 2, "SOURCE"},
      {{"A001"}, 2, "DESTINATION"},
      {{"A001", "1", "2", "3", "4"}, 2, "At most three destinations"},
      {{"A001", "first", "--turbo"}, 2, "--turbo"},
      {{"A001", "first", "--checksum", "md4"}, 2, "md4"},
      {{"A001", "first", "first"}, 2, "\"first\" is given twice"},
      {{"A001", first_, first_.native() + "/"}, 2, "is given twice"},
      {{"A001", "first", "second", "link"}, 2, "\"link\" is given twice"},
      {{"A001", "new/folder", "link/../new/folder/"}, 2, "is given twice"},
      {{"A001", "first", "file"}, 2, "zephrimark: \"file\" is a file."},
      {{"A001", "first", "file/below"}, 2, "\" is a file. Name a folder"},
      {{"A001", ""}, 2, "A destination is empty."},
      {{"missing", "first"}, 3, "There is no card or folder at \"missing\": "},
      {{"file", "first"}, 3, "zephrimark: \"file\" is a file."},
      {{"empty", "first"}, 3, "zephrimark: There are no files on the card to offload.\n"},
      {{"A001", "first", "A001/backup"}, 3, kOnTheCard},
      {{"A001", "A001"}, 3, kOnTheCard},
      {{"A001", "first", "dcim"}, 3, kOnTheCard}};
  const Words before = tree(temp_.path());
  for (const auto& [arguments, status, told] : cases) {
    SCOPED_TRACE(testing::PrintToString(arguments));
    expectRefusal(offload(Words{"--quiet"} + arguments), status, told);
    EXPECT_EQ(tree(temp_.path()), before);
  }
}

TEST_F(Offload, LeavesADifferentFileAloneAndNamesIt) {
  const std::string name = "b\xFF.mov";
  writeFile(card_ / "a.mov", "a");
  writeFile(card_ / name, pattern(1000));
  ASSERT_EQ(offload({card_, first_}).status, 0);
  const std::string landing = landed(first_);
  writeFile(landed(first_) / name, "precious");

  const End end = offload({card_, first_, second_});
  EXPECT_EQ(end.status, 1);
  EXPECT_TRUE(says(end.output, "✗ Some files weren't verified\n"));
  EXPECT_TRUE(says(end.output, "✗ " + landing + "\n    1 of 2 verified"));
  EXPECT_TRUE(says(end.output, "\n  b�.mov\n    " + landing + ": " + kDifferentFile + "\n"));
  EXPECT_EQ(readFile(landed(first_) / name), "precious");
  expectCopied(second_, {"a.mov", name});

  const End again = offload({card_, first_, second_, "--quiet", "--json"});
  EXPECT_EQ(again.status, 1);
  EXPECT_TRUE(says(again.error, kDifferentFile));
  const json result = objectsIn(again.output).result;
  EXPECT_EQ(result.at("allVerified"), false);
  const json outcomes = {{{"verified", false}, {"reason", kDifferentFile}},
                         {{"verified", true}, {"resumed", true}}};
  EXPECT_EQ(result.at("failed"), json({{{"path", "b�.mov"}, {"outcomes", outcomes}}}));
}

TEST_F(Offload, JsonIsProgressAndThenOneResultAndQuietLeavesTheResult) {
  writeFile(card_ / "a.mov", pattern(100'000));
  writeFile(card_ / "b.mov", "b");
  constexpr const char* kFormat = "%Y-%m-%dT%H:%M:%SZ";
  const std::string before = timeText(kFormat);
  const End end = offload({card_, first_, second_, "--json"});
  const std::string after = timeText(kFormat);
  EXPECT_EQ(end.status, 0);
  EXPECT_TRUE(says(end.error, "✓ Offload verified"));
  const auto [phases, result] = objectsIn(end.output);
  ASSERT_GE(phases.size(), 3U);
  EXPECT_EQ(phases.front() + " " + phases.back(), "scanning finishing");

  const std::string started = result.at("started");
  const std::string finished = result.at("finished");
  EXPECT_TRUE(before <= started && started <= finished && finished <= after) << result;
  for (const char* member : {"hashLists", "reports"}) {
    for (const json& file : result.at(member)) EXPECT_TRUE(fs::exists(file.get<std::string>()));
    EXPECT_FALSE(result.at(member).empty());
  }
  json rest = result;
  for (const char* member : {"started", "finished", "hashLists", "reports"}) rest.erase(member);
  const json drives = {{{"path", landed(first_).native()},
                        {"verified", 2},
                        {"readThroughCache", false},
                        {"error", nullptr}},
                       {{"path", landed(second_).native()},
                        {"verified", 2},
                        {"readThroughCache", false},
                        {"error", nullptr}}};
  EXPECT_EQ(rest, json({{"type", "result"},
                        {"allVerified", true},
                        {"files", 2},
                        {"totalBytes", 100'001},
                        {"destinations", drives},
                        {"failed", json::array()},
                        {"unreadable", json::array()},
                        {"missingRecords", json::array()},
                        {"cardImage", nullptr}}));

  const End lone = offload({card_, first_, "--quiet", "--json"});
  EXPECT_EQ(objectsIn(lone.output).phases, Words{});
  EXPECT_EQ(objectsIn(lone.output).result.at("allVerified"), true);
  const End silent = offload({card_, first_, "--quiet"});
  EXPECT_EQ(silent.output + silent.error + lone.error, "");
}

TEST_F(Offload, WhatCannotBeReadOnTheCardIsNamedAndTheRestIsCopied) {
  writeFile(card_ / "a.mov", "a");
  writeFile(card_ / "locked/b.mov", "b");
  fs::permissions(card_ / "locked", fs::perms::none);
  const End end = offloadAsOrdinaryUser({card_, first_, "--json"});
  fs::permissions(card_ / "locked", fs::perms(0755));
  EXPECT_EQ(end.status, 1);
  EXPECT_TRUE(says(end.error, "✗ Some of the card couldn't be read\n"));
  EXPECT_TRUE(says(end.error, "\n  locked: Permission denied\n"));
  const json result = objectsIn(end.output).result;
  EXPECT_EQ(result.at("allVerified"), true);
  EXPECT_EQ(result.at("unreadable"), json({{{"path", "locked"}, {"reason", "Permission denied"}}}));
  expectCopied(first_, {"a.mov"});

  // A file that can be listed but not read has failed.
  fs::permissions(card_ / "a.mov", fs::perms::none);
  fs::remove_all(day(first_));
  const End closed = offloadAsOrdinaryUser({card_, first_});
  fs::permissions(card_ / "a.mov", fs::perms(0644));
  EXPECT_EQ(closed.status, 1);
  EXPECT_TRUE(says(closed.output, "1 of 2 verified\n"));
  EXPECT_TRUE(says(closed.output, "a.mov: Permission denied\n"));
  expectCopied(first_, {"locked/b.mov"});
}

TEST_F(Offload, InterruptedInAFileKeepsWhatIsVerifiedAndTheNextRunCompletesIt) {
  const std::string name = "b/" + longName();
  for (const int signal : {SIGINT, SIGTERM}) {
    writeFile(card_ / "a.mov", pattern(100'000));
    makeLongFile(card_ / name, std::uintmax_t{1} << 30);
    Program program(command({card_, first_, "--json", "--checksum", "md5"}), setting_);
    // The second report on a file cannot come before its first bytes are copied.
    program.readUntil([](const std::string& output) {
      constexpr const char* kReport = R"("currentFile":"b/)";
      const std::size_t first = output.find(kReport);
      return first != std::string::npos && output.find(kReport, first + 1) != std::string::npos;
    });
    EXPECT_TRUE(tree(first_).back().ends_with(".zmpart"));
    program.send(signal);
    const End end = program.waitForEnd();
    EXPECT_EQ(end.status, 128 + signal);
    EXPECT_EQ(end.error, "zephrimark: The offload was stopped.\n");
    expectCopied(first_, {"a.mov"});

    fs::resize_file(card_ / name, 1'000'000);
    const End completed = offload({card_, first_});
    EXPECT_EQ(completed.status, 0) << completed.error;
    EXPECT_TRUE(says(completed.output, "2 of 2 verified · 1 already there\n"));
    expectCopied(first_, {"a.mov", name});
    fs::remove_all(first_);
  }
}

TEST_F(Offload, TheSecondInterruptEndsItAtOnce) {
  writeFile(card_ / longName(), "a");
  Program program(command({card_, first_, "--json"}), setting_);
  program.readUntil([](const std::string& output) {
    return output.find(R"("currentFile":"\u0001)") != std::string::npos;
  });
  for (int i = 0; i < 500 && program.isRunning(); ++i) {
    program.send(SIGINT);
    std::this_thread::sleep_for(20ms);
  }
  ASSERT_FALSE(program.isRunning());
  const End end = program.waitForEnd();
  EXPECT_EQ(end.status, 130);
  EXPECT_EQ(end.error, "");
}

// Whoever asks for the exit status only must not take it for a verdict that he was not told.
TEST_F(Offload, CopiesAllTheSameWhenNobodyListensButIsNotDoneWell) {
  makeLongFile(card_ / "a.mov", 160'000'000);
  const Words offloading = command({card_, first_, second_, "--json", "--checksum", "md5"});
  Program program(offloading, setting_);
  program.stopListening();
  EXPECT_EQ(program.waitForEnd().status, 1);
  const End full = run(Words{"sh", "-c", R"(exec "$0" "$@" >/dev/full)"} + offloading);
  EXPECT_EQ(full.status, 1);
  EXPECT_TRUE(says(full.error,
                   "zephrimark: The result could not be written to standard output: No "
                   "space left on device.\n"));
  // With the standard streams closed, the files that the program opens could get their numbers.
  for (const Path& destination : {first_, second_}) fs::remove_all(destination);
  EXPECT_EQ(run(Words{"sh", "-c", R"(exec "$0" "$@" <&- >&- 2>&-)"} + offloading).status, 1);
  expectCopied(first_, {"a.mov"});
  expectCopied(second_, {"a.mov"});
}

TEST_F(Offload, TellsWhichRecordsAreMissing) {
  writeFile(card_ / "a.mov", "a");
  EXPECT_EQ(offload({card_, first_, second_}).status, 0);
  fs::remove_all(landed(first_) / "ascmhl");
  writeFile(landed(first_) / "ascmhl", "somebody's");
  const End end = offload({card_, first_, second_, "--quiet", "--json"});
  EXPECT_EQ(end.status, 1);
  EXPECT_TRUE(says(end.error,
                   "\nNot every drive has its report and its hash list\n  The hash list "
                   "could not be written to " +
                       landed(first_).native() + ": File exists\n"));
  const json result = objectsIn(end.output).result;
  EXPECT_EQ(result.at("allVerified"), true);
  EXPECT_EQ(result.at("missingRecords"), json({{{"destination", landed(first_).native()},
                                                {"record", "hashList"},
                                                {"reason", "File exists"}}}));
  EXPECT_EQ(result.at("hashLists").size(), 1U);
}

TEST_F(Offload, LosesNothingWithFewOpenFiles) {
  for (int i = 0; i < 700; ++i) writeFile(card_ / std::to_string(i), std::to_string(i));
  for (const char* limit : {"256", "400", "1024"}) {
    for (const Path& drive : {first_, second_, third_}) fs::remove_all(drive);
    const End end = run(Words{"sh", "-c", R"(ulimit -n "$0"; exec "$@")", limit} +
                        command({card_, first_, second_, third_, "--quiet"}));
    EXPECT_EQ(end.status, 0) << limit << end.output.substr(0, 1000) << end.error;
  }
}

class OffloadOnATerminal : public Offload {
 protected:
  OffloadOnATerminal() { setting_.columns = 100; }

  void SetUp() override {
    if (!fs::exists("/dev/pts/ptmx")) GTEST_SKIP() << "There are no pseudo-terminals here.";
  }

  // What was drawn over one another, and last what stayed.
  static Words drawn(const std::string& shown) {
    constexpr std::string_view kRedraw = "\r\033[K";
    Words parts;
    std::size_t start = 0;
    for (std::size_t at = 0; (at = shown.find(kRedraw, start)) != std::string::npos;) {
      parts.push_back(shown.substr(start, at - start));
      start = at + kRedraw.size();
    }
    parts.push_back(shown.substr(start));
    return parts;
  }
};

TEST_F(OffloadOnATerminal, ProgressStaysOnOneLineAndNamesCannotSteerTheTerminal) {
  ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
  const std::string evil = "\033[31mred\r\n日本語の名前🎬.mov";
  writeFile(card_ / "z\xC2\x9B[31m.mov", "z");
  ASSERT_EQ(offload({card_, first_}).status, 0);
  writeFile(landed(first_) / "z\xC2\x9B[31m.mov", "another");
  makeLongFile(card_ / evil, 160'000'000);
  for (const int columns : {20, 60, 100}) {
    SCOPED_TRACE(columns);
    fs::remove(landed(first_) / evil);
    setting_.columns = static_cast<unsigned short>(columns);
    const End end = offload({card_, first_, "--checksum", "md5"});
    EXPECT_EQ(end.status, 1);
    EXPECT_FALSE(says(end.output, "\033[31m"));
    EXPECT_FALSE(says(end.output, "\xC2\x9B"));
    Words lines = drawn(end.output);
    EXPECT_TRUE(says(lines.back(), "Some files weren't verified"));
    EXPECT_TRUE(says(lines.back(), "\n  z�[31m.mov\r\n"));
    lines.pop_back();
    EXPECT_GE(lines.size(), 4U);
    bool named = false;
    for (const std::string& line : lines) {
      std::wstring wide(line.size() + 1, L'\0');
      wide.resize(std::mbstowcs(wide.data(), line.c_str(), wide.size()));
      // -1 for a line with a control character in it.
      const int width = wcswidth(wide.c_str(), wide.size());
      EXPECT_TRUE(width >= 0 && width <= columns) << width << ": " << line;
      named = named || line.find("[31mred") != std::string::npos;
    }
    EXPECT_TRUE(named || columns < 100) << end.output;
  }
}

TEST_F(OffloadOnATerminal, CtrlCClearsTheProgressAndSaysThatItStopped) {
  makeLongFile(card_ / "a.mov", std::uintmax_t{2} << 30);
  Program program(command({card_, first_, "--checksum", "md5"}), setting_);
  program.readUntil(
      [](const std::string& shown) { return shown.find("Copying") != std::string::npos; });
  program.type("\003");
  const End end = program.waitForEnd();
  EXPECT_EQ(end.status, 130);
  EXPECT_EQ(drawn(end.output).back(), "zephrimark: The offload was stopped.\r\n");
  expectCopied(first_, {});
}

TEST_F(OffloadOnATerminal, ShowsColoursAndSymbolsOnlyWhereTheyAreWelcome) {
  writeFile(card_ / "a.mov", "a");
  EXPECT_TRUE(says(offload({card_, first_}).output, "\033[1;32m✓ Offload verified\033[0m"));
  setting_.environment.emplace_back("NO_COLOR=1");
  const std::string plain = offload({card_, first_}).output;
  EXPECT_TRUE(says(plain, "✓ Offload verified\r\n"));
  EXPECT_FALSE(says(plain, "\033[1"));
  setting_.environment.pop_back();

  setting_.environment.front() = "LANG=C";
  writeFile(card_ / "\1.mov", "b");
  writeFile(landed(first_) / "a.mov", "another");
  for (const Words& arguments : {Words{card_, first_}, Words{"missing\1", first_}}) {
    setting_.columns = 100;
    std::string shown = offload(arguments).output;
    setting_.columns = 0;
    const End redirected = offload(arguments);
    EXPECT_FALSE(says(redirected.output + redirected.error, "\033"));
    shown += redirected.output + redirected.error;
    EXPECT_TRUE(std::all_of(shown.begin(), shown.end(), [](char c) { return c > 0; })) << shown;
  }
}

class OffloadToOtherVolumes : public Offload {
 protected:
  void SetUp() override {
    for (const Path& folder : {first_, second_}) fs::create_directory(folder);
    const End end = runWithMounts("mount -t tmpfs none first", {"true"});
    if (end.status != 0) GTEST_SKIP() << "Needs the right to mount: " << end.error;
  }

  // Nobody else sees the mounts, and they vanish with the program.
  [[nodiscard]] End runWithMounts(const std::string& mounts, const Words& words) const {
    return run(Words{"unshare", "-m", "sh", "-ec", mounts + R"(; exec "$0" "$@")"} + words);
  }
};

TEST_F(OffloadToOtherVolumes, RefusesWhatHasNoRoomCannotBeWrittenOrIsTheCard) {
  writeFile(card_ / "DCIM/a.mov", pattern(4'000'000));
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"mount -t tmpfs -o size=18m none first", "first (A001) needs "},
      {"mount -t tmpfs none first; mount -o remount,ro first",
       "first (A001) isn't available or can't be written to.\n"},
      {"mount -t tmpfs none A001; mkdir A001/DCIM; echo a >A001/DCIM/a.mov; "
       "mount --bind A001/DCIM first",
       kOnTheCard}};
  for (const auto& [mounts, sentence] : cases) {
    SCOPED_TRACE(mounts);
    const End end = runWithMounts(mounts, command({card_, second_, first_, "--quiet"}));
    expectRefusal(end, 3, sentence);
    EXPECT_EQ(tree(second_), Words{});
  }
}

TEST_F(OffloadToOtherVolumes, AFullDriveDoesNotKeepTheOtherFromBeingVerified) {
  const Words names = {"a.mov", "b.mov", "c.mov"};
  for (const std::string& name : names) writeFile(card_ / name, pattern(100'000));
  // Room for the root, two folders and one file.
  const End end = runWithMounts("mount -t tmpfs -o nr_inodes=4 none first",
                                command({card_, first_, second_, "--json"}));
  EXPECT_EQ(end.status, 1);
  EXPECT_TRUE(says(end.error, "The drive is full"));
  const json result = objectsIn(end.output).result;
  EXPECT_EQ(result.at("failed").size(), 2U);
  EXPECT_EQ(result.at("destinations").at(0).at("verified"), 1);
  EXPECT_EQ(result.at("destinations").at(1).at("verified"), 3);
  expectCopied(second_, names);
}

TEST_F(OffloadToOtherVolumes, AWholeCardIsKnownByItsVolumesName) {
  const End end = runWithMounts(
      "mkdir EOS_DIGITAL; mount -t tmpfs none EOS_DIGITAL; echo a >EOS_DIGITAL/a.mov; "
      "ln -s EOS_DIGITAL link",
      command({"link", first_}));
  EXPECT_EQ(end.status, 0) << end.error;
  EXPECT_TRUE(says(end.output, "Every file from EOS_DIGITAL was copied"));
  EXPECT_EQ(readFile(day(first_) / "EOS_DIGITAL/a.mov"), "a\n");
}

TEST_F(OffloadToOtherVolumes, EjectsOnlyAWholeCardOfWhichEverythingIsVerified) {
  writeFile(card_ / "a.mov", "a");
  const End folder = offload({card_, first_, "--eject", "--quiet"});
  EXPECT_EQ(folder.status, 0);
  EXPECT_EQ(folder.output, "");
  EXPECT_EQ(folder.error, "zephrimark: \"" + card_.native() +
                              "\" is a folder, not a whole card. It will not be ejected.\n");

  // A volume in memory, which would be told to have no disk.
  const auto offloadCard = [&] {
    const End end = runWithMounts(
        "mkdir -p CARD; mount -t tmpfs none CARD; echo a >CARD/a.mov",
        command({"CARD", second_, "--eject", "--json", "--quiet", "--template", "x"}));
    const json ejection =
        json::parse(end.output.substr(end.output.rfind('\n', end.output.size() - 2) + 1));
    EXPECT_EQ(ejection.at("type"), "eject");
    EXPECT_EQ(ejection.at("ejected"), false);
    EXPECT_TRUE(
        end.error.ends_with("zephrimark: " + ejection.at("reason").get<std::string>() + "\n"))
        << end.error;
    return std::pair(end.status, ejection.at("reason").get<std::string>());
  };
  const auto [status, reason] = offloadCard();
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(says(reason, "There is no single disk under CARD"));
  writeFile(second_ / "x/a.mov", "another");
  EXPECT_EQ(offloadCard(),
            std::pair(1, std::string("The card was not ejected because not everything is "
                                     "verified.")));
}

}  // namespace
}  // namespace EndToEnd
