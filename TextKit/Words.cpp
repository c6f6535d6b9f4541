#include "TextKit/Words.h"

#include "TextKit/Unicode.h"

#include <cstdint>

#include <unicode/uchar.h>

namespace TextKit {
namespace {

// Marks count in: a letter stays one letter when its accent is a character of its own.
bool belongsToWord(UChar32 character) {
  constexpr std::uint32_t kInWords = U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK;
  return (U_GET_GC_MASK(character) & kInWords) != 0;
}

}  // namespace

std::vector<std::string> lowerCaseWords(std::string_view text) {
  std::vector<std::string> words;
  bool inWord = false;
  forEachCharacter(text, [&](char32_t character, bool valid, std::string_view) {
    const auto code = static_cast<UChar32>(character);
    const bool belongs = valid && belongsToWord(code);
    if (belongs && !inWord) words.emplace_back();
    if (belongs) appendUtf8(words.back(), static_cast<char32_t>(u_tolower(code)));
    inWord = belongs;
  });
  return words;
}

}  // namespace TextKit
