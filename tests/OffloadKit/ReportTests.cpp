#include "OffloadKit/Proof/OffloadReport.h"
#include "TextKit/DateText.h"
#include "tests/OffloadKit/OffloadFixture.h"

#include <cerrno>

namespace OffloadKit {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class Report : public OffloadFixture {
 protected:
  Report() {
    setenv("TZ", "UTC", 1);
    tzset();
    std::filesystem::create_directories(copies(1));
  }

  // 7 October 2026, 14:32 UTC, 725 seconds long.
  OffloadResult result(int drives = 2) const {
    OffloadResult result;
    result.plan = plan(drives);
    result.plan.source = "/media/me/EOS <1> & \"2\"";
    result.plan.sourceName = "EOS <1> & \"2\"";
    result.started = PlatformKit::Date(std::chrono::seconds(1'791'383'520));
    result.finished = result.started + std::chrono::seconds(725);
    return result;
  }
  static OffloadedFile file(const std::string& path, std::vector<Outcome> outcomes) {
    return {{path, 1'450'000'000, {}, {}}, "9c3f0a77e1d25b40", std::move(outcomes)};
  }
};

TEST_F(Report, isExactlyThisPage) {
  auto page = result();
  page.files = {file("DCIM/IMG 1.CR3", {Outcome::verified(false), Outcome::verified(true)})};
  const std::string html = OffloadReport::html(page, 1);
  const std::string body = html.substr(html.find("</style>"));
  EXPECT_EQ(
      body,
      "</style></head><body><main>\n"
      "<h1>Offload report: EOS &lt;1&gt; &amp; &quot;2&quot;</h1>\n"
      "<p class=verdict>Every file was copied and verified on every drive.</p>\n"
      "<dl>\n"
      "  <dt>Started</dt><dd>" +
          TextKit::longDateText(page.started) +
          "</dd>\n"
          "  <dt>Took</dt><dd>12 min 5 s · 2 MB/s</dd>\n"
          "  <dt>Files</dt><dd>1 · 1.45 GB</dd>\n"
          "  <dt>Checksum</dt><dd>XXH64, source read twice</dd>\n"
          "  <dt>From</dt><dd>/media/me/EOS &lt;1&gt; &amp; &quot;2&quot;</dd>\n"
          "</dl>\n"
          "<ul><li><b>Drive 1</b>: " +
          copies(1).native() +
          "<br><span class=muted>1 of 1 files verified</span></li>"
          "<li><b>Drive 2</b> <span class=here>this drive</span>: " +
          copies(2).native() +
          "<br><span class=muted>1 of 1 files verified</span></li></ul>\n"
          "\n"
          "<table><thead><tr><th>File</th><th>Size</th><th>XXH64</th><th>Drive 1</th><th>Drive "
          "2</th></tr></thead>\n"
          "<tbody>\n"
          "<tr><td class=path>DCIM/IMG 1.CR3</td><td class=num>1.45 GB</td>"
          "<td class=hash>9c3f0a77e1d25b40</td><td class=ok>Verified</td>"
          "<td class=ok>Verified</td></tr>\n"
          "</tbody></table>\n"
          "<footer>Made with Zephrimark Offload. Checksums are also saved in the ascmhl folder "
          "(ASC MHL v2.0) for verification with any MHL tool.</footer>\n"
          "</main></body></html>");
  EXPECT_TRUE(html.starts_with(
      "<!doctype html>\n"
      "<html lang=\"en\"><head><meta charset=\"utf-8\"><meta name=\"viewport\" "
      "content=\"width=device-width, initial-scale=1\">\n"
      "<title>Offload report: EOS &lt;1&gt; &amp; &quot;2&quot;</title>\n"
      "<style>\n"
      ":root { --ink:#1c1c1e; --muted:#6e6e73; --rule:#e2e2e0; --ok:#1f7a3a; --bad:#b3261e; "
      "--bg:#fff; }\n"));
  EXPECT_THAT(html, HasSubstr("font-weight: 600; color: var(--ok); margin: 0 0 20px; }\ndl {"));
}

TEST_F(Report, saysWhatIsNotVerifiedAndWhy) {
  auto page = result(3);
  page.plan.verifySource = false;
  page.files = {
      file("a", {Outcome::verified(false), Outcome::failed(because("The drive is <full>")),
                 Outcome::verified(false)})};
  page.files[0].hash.reset();
  page.destinationErrors.emplace(1, because("The drive is <full>"));
  page.finished = page.started;
  const std::string html = OffloadReport::html(page, std::nullopt);
  EXPECT_THAT(html, HasSubstr("color: var(--bad); margin"));
  EXPECT_THAT(html, HasSubstr(">1 file(s) were not verified on every drive. See below.<"));
  EXPECT_THAT(html,
              HasSubstr("<td class=hash></td><td class=ok>Verified</td><td class=bad>The drive "
                        "is &lt;full&gt;</td><td class=ok>Verified</td></tr>"));
  EXPECT_THAT(html, HasSubstr("0 of 1 files verified · stopped: The drive is &lt;full&gt;</span>"));
  EXPECT_THAT(html, HasSubstr("<dd>0 s · Zero KB/s</dd>"));
  EXPECT_THAT(html, HasSubstr("<dd>XXH64</dd>"));
  EXPECT_THAT(html, Not(HasSubstr("this drive")));
}

TEST_F(Report, warnsAboveTheTableWhenPartOfTheCardCouldNotBeRead) {
  auto page = result(1);
  page.files = {file("a", {Outcome::verified(false)})};
  page.unreadable = {{"locked/<a>", because("Permission denied")}};
  const std::string items =
      "<p class=bad>Files may be missing from the table below. Don't erase the card "
      "yet.</p>\n<ul>\n"
      "<li><span class=path>locked/&lt;a&gt;</span><br><span class=muted>Permission denied</span>"
      "</li>\n</ul>\n<dl>";
  const std::string warned = OffloadReport::html(page, 0);
  EXPECT_THAT(warned, HasSubstr("</h1>\n<p class=verdict>Some of the card couldn't be read. Don't "
                                "erase the card yet.</p>\n<h2"));
  EXPECT_THAT(warned, HasSubstr(items));
  EXPECT_THAT(warned, HasSubstr("color: var(--bad); margin: 0 0 20px"));
  EXPECT_THAT(warned, Not(HasSubstr("Every file was copied and verified")));

  page.files = {file("a", {Outcome::failed(because("The drive is full"))})};
  const std::string failed = OffloadReport::html(page, 0);
  EXPECT_THAT(failed, HasSubstr("<p class=verdict>1 file(s) were not verified on every drive. See "
                                "below.</p>\n<h2"));
  EXPECT_THAT(failed, HasSubstr(items));
}

TEST_F(Report, listsAfterTheTableWhichNamesTheHashListChanges) {
  auto page = result(1);
  page.files = {file("bad\xFF\x07name", {Outcome::verified(false)})};
  const std::string html = OffloadReport::html(page, 0);
  const std::string end = html.substr(html.find("</table>"));
  EXPECT_THAT(end, HasSubstr("bad\xEF\xBF\xBD\xEF\xBF\xBDname</span><br><span class=muted>"
                             "bad%FF%07name</span>"));
  EXPECT_EQ(html.find('\xFF'), std::string::npos);
}

TEST_F(Report, describesTheCardImage) {
  auto page = result(2);
  page.plan.cardImage = CardImageRequest{"/dev/sdb", 1, 64};
  CardImageResult image;
  image.size = 64'000'000'000;
  image.hash = "abcd";
  image.unreadableBlocks = 3;
  image.outcome = CardImageResult::Outcome::verified();
  image.relativePath = "Card Image/EOS.img";
  page.cardImage = image;
  EXPECT_EQ(
      OffloadReport::imageSection(page),
      "<h2 style=\"font-size:17px;margin:20px 0 6px\">Card image</h2><p>Drive 2: Card "
      "Image/EOS.img<br><span class=ok>Verified</span> · 64 GB · XXH64 <span "
      "class=hash>abcd</span><br><span class=bad>3 unreadable block(s) on the card were saved "
      "as zeros.</span><br><span class=muted>A sector-by-sector copy of the whole card. Open it "
      "in Zephrimark Kestrine to look for deleted or lost files.</span></p>");
  // The image counts for the speed: 64 GB in 725 s.
  EXPECT_THAT(OffloadReport::html(page, 0), HasSubstr("12 min 5 s · 88.3 MB/s"));
  page.cardImage->outcome = CardImageResult::Outcome::failed(because("The drive is <full>"));
  page.cardImage->unreadableBlocks = 0;
  EXPECT_THAT(OffloadReport::imageSection(page),
              HasSubstr("<br><span class=bad>Not saved: The drive is &lt;full&gt;</span><br><span "
                        "class=muted>A sector"));
}

TEST_F(Report, takesTheFirstFreeNameOfItsMinuteAndLeavesNothingPartial) {
  auto page = result(1);
  // A file of the card that has the name under which reports are usually written first.
  page.files = {file(".Offload Report.zmpart", {Outcome::verified(false)})};
  writeFile(copies(1) / ".Offload Report.zmpart", "footage");
  std::vector<std::string> names;
  for (int i = 0; i < 3; ++i) names.push_back(OffloadReport::write(*held(copies(1)), page, 0));
  EXPECT_THAT(names, ::testing::ElementsAre("Offload Report 2026-10-07 1432.html",
                                            "Offload Report 2026-10-07 1432 (2).html",
                                            "Offload Report 2026-10-07 1432 (3).html"));
  EXPECT_EQ(readFile(copies(1) / ".Offload Report.zmpart"), "footage");
  const auto before = tree(copies(1));
  for (const Call call : {Call::createFile, Call::write, Call::flush, Call::move}) {
    fileSystem_.setScript(FaultyFileSystem::failing(call, "Offload Report", ENOSPC));
    EXPECT_THROW(static_cast<void>(OffloadReport::write(*held(copies(1)), page, 0)),
                 std::system_error);
    EXPECT_EQ(tree(copies(1)), before);
  }
}

}  // namespace
}  // namespace OffloadKit
