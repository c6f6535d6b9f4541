#include "PlatformKit/Collation.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/locid.h>

namespace PlatformKit {
namespace {

/// The user's language for as long as it lives.
class Language {
 public:
  explicit Language(const char* name) { set(icu::Locale(name)); }
  ~Language() { set(before_); }
  Language(const Language&) = delete;
  Language& operator=(const Language&) = delete;

 private:
  static void set(const icu::Locale& locale) {
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale::setDefault(locale, status);
    EXPECT_TRUE(U_SUCCESS(status));
  }

  const icu::Locale before_ = icu::Locale::getDefault();
};

std::vector<std::string_view> ordered(const std::vector<std::string_view>& names) {
  std::vector<std::string_view> result;
  for (const std::size_t position : fileBrowserOrder(names)) result.push_back(names.at(position));
  return result;
}

using Names = std::vector<std::string_view>;

TEST(FileBrowserOrder, ComparesNumbersByValueAndIgnoresCaseInEveryLanguage) {
  for (const char* name : {"en_US_POSIX", "en_US", "de_DE", "ja_JP"}) {
    const Language language(name);
    EXPECT_EQ(ordered({"A10.MOV", "a2.MOV", "A1.MOV"}), (Names{"A1.MOV", "a2.MOV", "A10.MOV"}));
    EXPECT_EQ(ordered({"b", "C", "A", "ä", "Z"}), (Names{"A", "ä", "b", "C", "Z"})) << name;
    EXPECT_EQ(ordered({"C 99999999999999999999", "C 100000000000000000000", "C 7"}).back(),
              "C 100000000000000000000");
  }
}

TEST(FileBrowserOrder, FollowsTheUsersLanguage) {
  const Names names = {"z", "ö", "o"};
  {
    const Language german("de_DE");
    EXPECT_EQ(ordered(names), (Names{"o", "ö", "z"}));
  }
  const Language swedish("sv_SE");
  EXPECT_EQ(ordered(names), (Names{"o", "z", "ö"}));
}

TEST(FileBrowserOrder, KeepsTheOrderOfNamesThatCompareEqual) {
  for (Names names : {Names{"clip.mov", "CLIP.MOV", "Clip.mov"}, Names{"A01", "a1", "A001"},
                      Names{"Caf\u00E9", "Cafe\u0301"}, Names{"x\xFFy", "x\uFFFDy"}}) {
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
}  // namespace PlatformKit
