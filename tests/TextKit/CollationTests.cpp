#include "TextKit/Collation.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/locid.h>

namespace TextKit {
namespace {

using Names = std::vector<std::string_view>;

Names ordered(const Names& names) {
  Names result;
  for (const std::size_t position : fileBrowserOrder(names)) result.push_back(names.at(position));
  return result;
}

/// The same for a user of this language.
Names ordered(const char* language, const Names& names) {
  const icu::Locale before = icu::Locale::getDefault();
  UErrorCode status = U_ZERO_ERROR;
  icu::Locale::setDefault(icu::Locale(language), status);
  const Names result = ordered(names);
  icu::Locale::setDefault(before, status);
  EXPECT_TRUE(U_SUCCESS(status)) << language;
  return result;
}

TEST(FileBrowserOrder, ComparesNumbersByValueAndIgnoresCaseInEveryLanguage) {
  for (const char* language : {"en_US_POSIX", "en_US", "de_DE", "ja_JP"}) {
    EXPECT_EQ(ordered(language, {"A10.MOV", "a2.MOV", "A1.MOV"}),
              (Names{"A1.MOV", "a2.MOV", "A10.MOV"}));
    EXPECT_EQ(ordered(language, {"b", "C", "A", "ä", "Z"}), (Names{"A", "ä", "b", "C", "Z"}));
    EXPECT_EQ(ordered(language, {"C 100000000000000000000", "C 99999999999999999999"}),
              (Names{"C 99999999999999999999", "C 100000000000000000000"}));
  }
  EXPECT_EQ(ordered("de_DE", {"z", "ö", "o"}), (Names{"o", "ö", "z"}));
  EXPECT_EQ(ordered("sv_SE", {"z", "ö", "o"}), (Names{"o", "z", "ö"}));
}

TEST(FileBrowserOrder, KeepsTheOrderOfNamesThatCompareEqual) {
  for (const Names& equal : {Names{"clip.mov", "CLIP.MOV", "Clip.mov"}, Names{"A01", "a1", "A001"},
                             Names{"Caf\u00E9", "Cafe\u0301"}, Names{"x\xFFy", "x\uFFFDy"}}) {
    Names names;
    for (int i = 0; i < 50; ++i) names.insert(names.end(), equal.begin(), equal.end());
    EXPECT_EQ(ordered(names), names);
    std::reverse(names.begin(), names.end());
    EXPECT_EQ(ordered(names), names);
  }
}

TEST(FileBrowserOrder, TakesEveryNameOfALongListExactlyOnceWhateverItsBytes) {
  std::vector<std::string> names = {"", "\xFF\xFE", "\xC3", std::string("a\0b", 3),
                                    std::string(100'000, '\xF0')};
  for (int i = 20'000; i > 0; --i) names.push_back("A" + std::to_string(i) + ".mov");
  auto order = fileBrowserOrder(Names(names.begin(), names.end()));
  int last = 0;
  for (const std::size_t position : order) {
    if (position < 5) continue;
    const int number = std::stoi(names.at(position).substr(1));
    ASSERT_EQ(number, last + 1);
    last = number;
  }
  std::sort(order.begin(), order.end());
  ASSERT_EQ(order.size(), names.size());
  for (std::size_t i = 0; i < order.size(); ++i) ASSERT_EQ(order[i], i);
}

}  // namespace
}  // namespace TextKit
