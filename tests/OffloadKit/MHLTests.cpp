#include "OffloadKit/Proof/C4.h"
#include "OffloadKit/Proof/MHL.h"
#include "OffloadKit/Proof/MHLHistory.h"
#include "OffloadKit/Proof/Markup.h"
#include "OffloadKit/Records/Version.h"
#include "PlatformKit/Posix/HostName.h"
#include "tests/OffloadKit/OffloadFixture.h"

#include <cerrno>

namespace OffloadKit::MHL {
namespace {

using PlatformKit::Date;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

// 7 October 2026, 12:32:05.123 UTC.
constexpr Date kNow(std::chrono::milliseconds(1'791'376'325'123));

TEST(C4, givesThePublishedIdentifiers) {
  EXPECT_EQ(
      c4ID(""),
      "c459dsjfscH38cYeXXYogktxf4Cd9ibshE3BHUo6a58hBXmRQdZrAkZzsWcbWtDg5oQstpDuni4Hirj75GEmTc1s"
      "FT");
  EXPECT_EQ(
      c4ID("abc"),
      "c45S4rnaTNWonxss1u8LzsaJdEph1AJhWUF4sh2waXKMsutyfAxg4ybUeuXVWS9HdNcEypmeXn8FZGonD4w1rj9D"
      "Zp");
  for (int i = 0; i < 2000; ++i) ASSERT_EQ(c4ID(std::to_string(i)).size(), 90U) << i;
}

TEST(carriedPath, leavesWhatXMLCanHoldAndWritesTheRestReadably) {
  for (const char* plain :
       {"DCIM/IMG_0001.CR3", "100% & <\"'>", "tab\tline\nfeed", "e\xCC\x81\xF0\x9F\x8E\xA5"}) {
    EXPECT_EQ(carriedPath(plain), plain);
  }
  EXPECT_EQ(carriedPath("bell\x07 100%"), "bell%07 100%25");
  EXPECT_EQ(carriedPath("cut\xC3/bad\xFF\r"), "cut%C3/bad%FF%0D");
  EXPECT_EQ(carriedPath("\xEF\xBF\xBE"), "%EF%BF%BE");
}

class HashLists : public OffloadFixture {
 protected:
  void SetUp() override {
    setenv("TZ", "UTC-2", 1);
    tzset();
    std::filesystem::create_directories(copies(1));
  }
  void TearDown() override {
    unsetenv("TZ");
    tzset();
  }

  static OffloadedFile verified(const std::string& path, std::vector<Outcome> outcomes = {}) {
    SourceFile file{path, 1'048'576, Date(std::chrono::seconds(1'791'376'000)), std::nullopt};
    if (outcomes.empty()) outcomes = {Outcome::verified(false)};
    return {file, "9c3f0a77e1d25b40", std::move(outcomes)};
  }
  std::string write(const std::vector<OffloadedFile>& files, const std::vector<Entry>& extra = {},
                    HashKit::HashAlgorithm algorithm = HashKit::HashAlgorithm::xxh64) {
    const Path list = writeGeneration(*held(copies(1)), "A001", files, 0, extra, algorithm, kNow);
    return copies(1) / list;
  }
  std::string chain() { return readFile(copies(1) / "ascmhl/ascmhl_chain.xml"); }
  void writeChain(const std::string& text) {
    writeFile(copies(1) / "ascmhl/ascmhl_chain.xml", text);
  }
};

TEST_F(HashLists, haveTheLayoutOfTheFormatByteForByte) {
  const Path list = write({verified("DCIM/A & <B>\"'.CR3")});
  EXPECT_EQ(list, copies(1) / "ascmhl/0001_A001_2026-10-07_123205Z.mhl");
  const std::string host = escapeMarkup(PlatformKit::hostName());
  const std::string expected =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<hashlist version=\"2.0\" xmlns=\"urn:ASC:MHL:v2.0\">\n"
      "  <creatorinfo>\n"
      "    <creationdate>2026-10-07T14:32:05+02:00</creationdate>\n"
      "    <hostname>" +
      host +
      "</hostname>\n"
      "    <tool version=\"" +
      std::string(productVersion()) +
      "\">Zephrimark Offload</tool>\n"
      "  </creatorinfo>\n"
      "  <processinfo>\n"
      "    <process>transfer</process>\n"
      "    <ignore>\n"
      "      <pattern>.DS_Store</pattern>\n"
      "      <pattern>ascmhl</pattern>\n"
      "      <pattern>ascmhl/</pattern>\n"
      "    </ignore>\n"
      "  </processinfo>\n"
      "  <hashes>\n"
      "    <hash>\n"
      "      <path size=\"1048576\" lastmodificationdate=\"2026-10-07T14:26:40+02:00\">"
      "DCIM/A &amp; &lt;B&gt;&quot;'.CR3</path>\n"
      "      <xxh64 action=\"original\" hashdate=\"2026-10-07T14:32:05.123+02:00\">"
      "9c3f0a77e1d25b40</xxh64>\n"
      "    </hash>\n"
      "  </hashes>\n"
      "</hashlist>\n";
  EXPECT_EQ(readFile(list), expected);
  EXPECT_EQ(chain(),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<ascmhldirectory xmlns=\"urn:ASC:MHL:DIRECTORY:v2.0\">\n"
            "  <hashlist sequencenr=\"1\">\n"
            "    <path>0001_A001_2026-10-07_123205Z.mhl</path>\n"
            "    <c4>" +
                c4ID(expected) +
                "</c4>\n"
                "  </hashlist>\n"
                "</ascmhldirectory>\n");
}

TEST_F(HashLists, markKnownPathsVerifiedAndExtendTheChain) {
  write({verified("b"), verified(" spaces "), verified("bad\xFFname"), verified("100%")});
  const std::string first = chain();
  const std::string second = readFile(write({verified("a"), verified("b"), verified(" spaces "),
                                             verified("bad\xFFname"), verified("100%")}));
  EXPECT_THAT(second, HasSubstr(">a</path>\n      <xxh64 action=\"original\""));
  for (const char* known : {">b<", "> spaces <", ">bad%FFname<", ">100%<"}) {
    EXPECT_THAT(second, HasSubstr(std::string(known) + "/path>\n      <xxh64 action=\"verified\""));
  }
  EXPECT_TRUE(chain().starts_with(first.substr(0, first.find("</ascmhldirectory>"))));
  EXPECT_THAT(chain(), HasSubstr("sequencenr=\"2\""));
  EXPECT_THAT(readFile(write({})), HasSubstr("  <hashes>\n  </hashes>\n"));
}

TEST_F(HashLists, listOnlyWhatIsVerifiedThereWithExtrasAndReports) {
  auto unhashed = verified("unhashed");
  unhashed.hash.reset();
  writeFile(copies(1) / "Offload Report 2026-10-07 1432.html", "report");
  writeFile(copies(1) / "Offload Report listed.html", "x");
  writeFile(copies(1) / "offload report.html", "x");
  writeFile(copies(1) / "sub/Offload Report.html", "x");
  std::filesystem::create_directories(copies(1) / "Offload Report folder");
  const std::string list =
      readFile(write({verified("IMG_10.JPG"), verified("IMG_2.JPG"), verified("img_3.JPG"),
                      verified("failed", {Outcome::failed(because("The drive is full"))}), unhashed,
                      verified("Offload Report listed.html")},
                     {{"Card Image/card.img", 5, kNow, "00ff"}}, HashKit::HashAlgorithm::md5));
  std::vector<std::string> paths;
  for (std::size_t at = 0; (at = list.find("<path ", at)) != std::string::npos;) {
    const std::size_t start = list.find('>', at) + 1;
    at = list.find("</path>", start);
    paths.push_back(list.substr(start, at - start));
  }
  EXPECT_THAT(paths,
              ElementsAre("Card Image/card.img", "IMG_2.JPG", "img_3.JPG", "IMG_10.JPG",
                          "Offload Report 2026-10-07 1432.html", "Offload Report listed.html"));
  // MD5 of "report".
  EXPECT_THAT(list, HasSubstr(">e98d2f001da5678b39482efbdf5770dc</md5>"));
}

TEST_F(HashLists, continueAfterTheHighestNumberThatTheChainHas) {
  const auto numbered = [](const char* number) {
    return std::string("<hashlist ") + number + "><path>x</path></hashlist>";
  };
  const std::pair<std::string, const char*> chains[] = {
      {numbered("sequencenr=\"7\"") + numbered("sequencenr=\"3\""), "0008_"},
      {numbered("sequencenr=\"none\""), "0001_"},
      {numbered("sequencenr=\"+12344\""), "12345_"},
      {numbered("sequencenr=\"+-5\""), "0001_"},
      {numbered("sequencenr=\"99999999999999999999\""), "0001_"},
      {numbered("sequencenr=\"9223372036854775807\""), "9223372036854775807_"},
  };
  for (const auto& [entries, start] : chains) {
    std::filesystem::remove_all(copies(1) / "ascmhl");
    writeChain("<ascmhldirectory>" + entries + "</ascmhldirectory>");
    EXPECT_TRUE(Path(write({})).filename().native().starts_with(start)) << entries;
  }
  EXPECT_THAT(chain(), HasSubstr("<path>x</path>\n    <c4></c4>"));
}

TEST_F(HashLists, keepNumberAndTimeOfAFolderWithALongName) {
  const std::string folder = std::string(253, 'n') + "\xC3\xA9";
  const Path list =
      writeGeneration(*held(drive(1)), folder, {}, 0, {}, HashKit::HashAlgorithm::xxh64, kNow);
  const std::string name = list.filename();
  EXPECT_EQ(name.size(), 255U);
  EXPECT_TRUE(name.starts_with("0001_nnn") && name.ends_with("n_2026-10-07_123205Z.mhl"));
  EXPECT_THAT(writeGeneration(*held(drive(2)), "odd\x01\xFF", {}, 0, {},
                              HashKit::HashAlgorithm::xxh64, kNow)
                  .native(),
              HasSubstr("/0001_odd%01%FF_2026"));
}

TEST_F(HashLists, tellWhyTheyCouldNotBeWrittenAndLeaveTheChainAlone) {
  write({verified("a")});
  const std::string before = chain();
  const auto errorOf = [&] {
    try {
      writeGeneration(*held(copies(1)), "A001", {verified("a")}, 0, {},
                      HashKit::HashAlgorithm::xxh64, kNow + std::chrono::seconds(1));
    } catch (const std::system_error& error) {
      return error.code().value();
    }
    return 0;
  };
  for (const Call call : {Call::createFile, Call::write, Call::flush, Call::move}) {
    fileSystem_.setScript(FaultyFileSystem::failing(call, "ascmhl/", ENOSPC));
    EXPECT_EQ(errorOf(), ENOSPC);
    fileSystem_.setScript(FaultyFileSystem::failing(call, "ascmhl/", EROFS));
    EXPECT_EQ(errorOf(), EROFS);
    EXPECT_EQ(tree(copies(1)).size(), 3U);
  }
  // The list is there already when the chain fails: it stays, unlisted.
  fileSystem_.setScript(FaultyFileSystem::failing(Call::moveReplacing, "ascmhl_chain", EIO));
  EXPECT_EQ(errorOf(), EIO);
  fileSystem_.setScript({});
  EXPECT_EQ(chain(), before);
  EXPECT_EQ(tree(copies(1)).size(), 4U);
  EXPECT_EQ(errorOf(), EEXIST);
}

}  // namespace
}  // namespace OffloadKit::MHL
