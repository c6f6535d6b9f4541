#include "TextKit/ByteCount.h"
#include "TextKit/DateText.h"
#include "TextKit/Unicode.h"

#include <cstdlib>
#include <ctime>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace TextKit {
namespace {

TEST(Unicode, EveryByteThatBelongsToNoCharacterCountsAsOneInvalidCharacter) {
  const std::string bad = "\uFFFD";
  EXPECT_EQ(validUtf8("a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x93\xB7z"), "aä€\U0001F4F7z");
  EXPECT_EQ(validUtf8("a\x80z"), "a" + bad + "z") << "a continuation alone";
  EXPECT_EQ(validUtf8("\xE2\x82z\xF0\x9F\x93"), bad + bad + "z" + bad + bad + bad) << "cut short";
  EXPECT_EQ(validUtf8("\xC0\x80\xE0\x80\x80"), bad + bad + bad + bad + bad) << "overlong";
  EXPECT_EQ(validUtf8("\xED\xA0\x80"), bad + bad + bad) << "a surrogate";
  EXPECT_EQ(validUtf8("\xF4\x90\x80\x80\xFF"), bad + bad + bad + bad + bad) << "behind the last";

  const std::string_view text("a\xC3\xA4\xE2\0", 5);
  std::string visited;
  forEachCharacter(text, [&](char32_t character, bool valid, std::string_view bytes) {
    EXPECT_EQ(bytes.data(), text.data() + visited.size());
    EXPECT_EQ(valid, character != 0xFFFD);
    visited += bytes;
  });
  EXPECT_EQ(visited, text);
}

TEST(Unicode, TextForOneLineOfAScreenHoldsNothingThatMovesTheCursorOrHidesText) {
  EXPECT_EQ(singleLineText("a\nb\tc\x1B[2J\x7F d\u0085e\u202Ef\u200Bg\xFF"),
            "a\uFFFDb\uFFFDc\uFFFD[2J\uFFFD d\uFFFDe\uFFFDf\uFFFDg\uFFFD");
  EXPECT_EQ(singleLineText("e\u0301 界 \U0001F4F7"), "e\u0301 界 \U0001F4F7");
  for (const char32_t space : {U' ', U'\t', U'\u00A0', U'\u3000'}) {
    EXPECT_TRUE(isSpaceCharacter(space)) << static_cast<unsigned>(space);
  }
  for (const char32_t other : {U'a', U'\n', U'\u200B'}) {
    EXPECT_FALSE(isSpaceCharacter(other)) << static_cast<unsigned>(other);
  }
}

TEST(Unicode, UpperCaseFollowsUnicodeAndCountsInvalidBytesAsOthersDo) {
  EXPECT_EQ(upperCase("clip_é.ß ﬁ i ı я"), "CLIP_É.SS FI I I Я");
  for (const std::string text : {"A\xFFZ", "A\xE2\x82Z", "\xF0\x9F\x93"}) {
    EXPECT_EQ(upperCase(text), validUtf8(text));
  }
}

TEST(Unicode, ElidedTextFitsItsCellsAndIsCutBetweenCharacters) {
  EXPECT_EQ(elidedInTheMiddle("A001_C002.mov", 13), "A001_C002.mov");
  EXPECT_EQ(elidedInTheMiddle("A001_C002.mov", 8), "A00….mov");
  EXPECT_EQ(elidedInTheMiddle("A001_C002.mov", 1), "…");
  EXPECT_EQ(elidedInTheMiddle("A001_C002.mov", 0), "");
  EXPECT_EQ(cellWidth("e\u0301界a\u200D"), 4U);
  for (const std::string text :
       {"abcdefghij", "界界界界界", "a界b界c界", "e\u0301e\u0301e\u0301e\u0301e\u0301",
        "\U0001F4F7x\U0001F4F7y\U0001F4F7", "\u0301界\u0301\u0302界a\u0301"}) {
    for (std::size_t cells = 1; cells < cellWidth(text); ++cells) {
      const std::string elided = elidedInTheMiddle(text, cells);
      EXPECT_LE(cellWidth(elided), cells) << elided;
      EXPECT_GE(cellWidth(elided) + 2, cells) << elided << " is cut more than it must be";
      EXPECT_EQ(validUtf8(elided), elided);
      const std::size_t gap = elided.find("…");
      ASSERT_NE(gap, std::string::npos) << elided;
      EXPECT_TRUE(text.starts_with(elided.substr(0, gap))) << elided;
      EXPECT_TRUE(text.ends_with(elided.substr(gap + 3))) << elided;
    }
  }
}

TEST(ByteCount, IsToldInTheUnitAndWithTheDecimalsPeopleReadFileSizesIn) {
  const std::vector<std::pair<std::uint64_t, std::string>> texts = {
      {0, "Zero KB"},
      {1, "1 byte"},
      {2, "2 bytes"},
      {512, "512 bytes"},
      {999, "999 bytes"},
      {1000, "1 KB"},
      {1499, "1 KB"},
      {1500, "2 KB"},
      {850'000, "850 KB"},
      {999'499, "999 KB"},
      {999'500, "1 MB"},
      {999'999, "1 MB"},
      {1'250'000, "1.3 MB"},
      {12'300'000, "12.3 MB"},
      {999'949'999, "999.9 MB"},
      {999'950'000, "1 GB"},
      {1'050'000'000, "1.05 GB"},
      {64'200'000'000, "64.2 GB"},
      {100'000'000'000, "100 GB"},
      {2'000'000'000'000, "2 TB"},
      {1'234'567'000'000'000, "1.23 PB"},
      {std::numeric_limits<std::uint64_t>::max(), "18.45 EB"}};
  for (const auto& [bytes, text] : texts) EXPECT_EQ(byteCountText(bytes), text) << bytes;
}

class DatesInATimeZone : public ::testing::Test {
 protected:
  ~DatesInATimeZone() override { setZone(before_ ? before_->c_str() : nullptr); }

  static void setZone(const char* zone) {
    EXPECT_EQ(zone == nullptr ? unsetenv("TZ") : setenv("TZ", zone, 1), 0);
    tzset();
  }

 private:
  const std::optional<std::string> before_ =
      getenv("TZ") == nullptr ? std::nullopt : std::optional<std::string>(getenv("TZ"));
};

TEST_F(DatesInATimeZone, AreLaidOutInThatZoneOrInUtc) {
  using namespace std::chrono;
  const Date summer = sys_days(year(2026) / 7 / 31) + 22h + 5min + 9s + 999'999'999ns;
  const Date winter = sys_days(year(2026) / 12 / 31) + 22h + 30min;
  setZone("CET-1CEST,M3.5.0,M10.5.0/3");
  EXPECT_EQ(localDateText(summer, "%Y-%m-%d %H%M"), "2026-08-01 0005");
  EXPECT_EQ(localDateText(winter, "%Y-%m-%d %H%M"), "2026-12-31 2330");
  EXPECT_EQ(utcDateText(summer, "%A %e %B"), "Friday 31 July");
  EXPECT_EQ(internetDateText(summer), "2026-07-31T22:05:09Z");
  setZone("NPT-5:45");
  EXPECT_EQ(localDateText(winter, "%Y-%m-%d %H:%M"), "2027-01-01 04:15");
}

TEST(Dates, BeforeTheYear1970AreRoundedDownToTheSecondToo) {
  const auto text = [](std::int64_t nanoseconds) {
    return internetDateText(Date(std::chrono::nanoseconds(nanoseconds)));
  };
  EXPECT_EQ(text(0), "1970-01-01T00:00:00Z");
  EXPECT_EQ(text(-1), "1969-12-31T23:59:59Z");
  EXPECT_EQ(text(-1'000'000'000), "1969-12-31T23:59:59Z");
  EXPECT_EQ(text(-1'000'000'001), "1969-12-31T23:59:58Z");
  EXPECT_EQ(text(-3'153'600'000'000'000'000), "1870-01-25T00:00:00Z");
}

}  // namespace
}  // namespace TextKit
