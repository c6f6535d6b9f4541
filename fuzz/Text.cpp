#include "TextKit/Unicode.h"
#include "TextKit/Words.h"
#include "fuzz/Input.h"

#include <string>

using namespace TextKit;

namespace {

bool isValid(std::string_view text) {
  bool all = true;
  forEachCharacter(text, [&](char32_t, bool valid, std::string_view) { all &= valid; });
  return all;
}

void checkCharacters(std::string_view text) {
  std::string joined;
  std::string encoded;
  forEachCharacter(text, [&](char32_t character, bool valid, std::string_view bytes) {
    Fuzz::require(!bytes.empty() && (valid || bytes.size() == 1), "a character has its bytes");
    joined += bytes;
    if (valid) {
      appendUtf8(encoded, character);
    } else {
      encoded += bytes;
    }
  });
  Fuzz::require(joined == text && encoded == text, "the characters are the text");
}

void checkRepairs(std::string_view text) {
  const std::string valid = validUtf8(text);
  Fuzz::require(isValid(valid) && (valid == text) == isValid(text), "repaired text is UTF-8");
  const std::string line = singleLineText(text);
  forEachCharacter(line, [](char32_t character, bool isWhole, std::string_view) {
    Fuzz::require(isWhole && !isControlCharacter(character), "a line has no controls");
  });
  Fuzz::require(singleLineText(line) == line, "a line stays a line");
  const std::string visible = withoutControls(text);
  Fuzz::require(isValid(visible) && singleLineText(visible) == line, "marks only join or direct");
  Fuzz::require(isValid(upperCase(text)), "upper case is UTF-8");
  Fuzz::require(upperCase(text).size() <= 3 * valid.size(), "upper case has a bound");
}

void checkParts(std::string_view text, std::size_t length) {
  const auto middle = trimmed(text);
  Fuzz::require(trimmed(middle) == middle, "trimming once is enough");
  Fuzz::require(text.find(middle) != std::string_view::npos, "trimmed text is a part");
  const auto start = shortened(text, length);
  Fuzz::require(start.size() <= length && text.substr(0, start.size()) == start,
                "shortened text is a beginning");
  Fuzz::require(!isValid(text) || isValid(start), "no character is cut in two");
  Fuzz::require(text.size() <= length ? start == text : start.size() + 4 > length,
                "no more is cut than must be");
}

void checkElision(const std::string& text, std::size_t cells) {
  const std::string elided = elidedInTheMiddle(text, cells);
  Fuzz::require(cellWidth(elided) <= cells, "elided text fits");
  Fuzz::require(isValid(elided), "elided text is UTF-8");
  if (cellWidth(text) <= cells) Fuzz::require(elided == text, "what fits stays");
}

void checkWords(std::string_view text) {
  const auto words = lowerCaseWords(text);
  std::string line;
  for (const std::string& word : words) {
    Fuzz::require(!word.empty() && isValid(word), "a word is text");
    line += word + " ";
  }
  Fuzz::require(lowerCaseWords(line) == words, "words in lower case stay as they are");
}

}  // namespace

/// Input: a number of one byte, then a text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto all = Fuzz::textOf(data, size);
  const auto number = static_cast<std::size_t>(Fuzz::numberOf(all.substr(0, 1)));
  const auto text = all.substr(size > 0 ? 1 : 0);
  checkCharacters(text);
  checkRepairs(text);
  checkParts(text, number);
  checkElision(validUtf8(text), number);
  checkWords(text);
  return 0;
}
