#include "TextKit/Unicode.h"

#include <algorithm>
#include <cstdint>

#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

namespace TextKit {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

std::size_t cellsOf(char32_t character) {
  const auto code = static_cast<UChar32>(character);
  const int kind = u_charType(code);
  if (kind == U_NON_SPACING_MARK || kind == U_ENCLOSING_MARK || kind == U_FORMAT_CHAR) return 0;
  const int width = u_getIntPropertyValue(code, UCHAR_EAST_ASIAN_WIDTH);
  return width == U_EA_FULLWIDTH || width == U_EA_WIDE ? 2 : 1;
}

}  // namespace

bool Detail::nextCharacter(std::string_view text, std::size_t& position, char32_t& character) {
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  const auto start = static_cast<std::int64_t>(position);
  const auto length = static_cast<std::int64_t>(text.size());
  std::int64_t next = start;
  UChar32 code = 0;
  U8_NEXT(bytes, next, length, code);
  if (code < 0) {
    // One byte at a time, so that the number of marks shows how much was damaged.
    position += 1;
    character = kReplacement;
    return false;
  }
  position = static_cast<std::size_t>(next);
  character = static_cast<char32_t>(code);
  return true;
}

bool isControlCharacter(char32_t character) {
  const int kind = u_charType(static_cast<UChar32>(character));
  return kind == U_CONTROL_CHAR || kind == U_FORMAT_CHAR;
}

bool isSpaceCharacter(char32_t character) {
  return character == U'\t' || u_charType(static_cast<UChar32>(character)) == U_SPACE_SEPARATOR;
}

bool isSpaceOrLineBreak(char32_t character) {
  return isSpaceCharacter(character) || (character >= 0x0A && character <= 0x0D) ||
         character == 0x85 || character == 0x2028 || character == 0x2029;
}

std::string_view trimmed(std::string_view text) {
  // Most text has nothing to trim, which its first and last byte tell.
  const auto isPlain = [](char c) { return c > ' ' && c < 0x7F; };
  if (!text.empty() && isPlain(text.front()) && isPlain(text.back())) return text;
  std::size_t start = text.size();
  std::size_t end = 0;
  forEachCharacter(text, [&](char32_t character, bool, std::string_view bytes) {
    if (isSpaceOrLineBreak(character)) return;
    const auto at = static_cast<std::size_t>(bytes.data() - text.data());
    start = std::min(start, at);
    end = at + bytes.size();
  });
  return start < end ? text.substr(start, end - start) : std::string_view();
}

void appendUtf8(std::string& text, char32_t character) {
  icu::UnicodeString(static_cast<UChar32>(character)).toUTF8String(text);
}

namespace {

// The text with U+FFFD for every invalid byte and for every character that `isReplaced` wants gone.
template <class Predicate>
std::string replaced(std::string_view text, Predicate isReplaced) {
  std::string result;
  result.reserve(text.size());
  forEachCharacter(text, [&](char32_t character, bool valid, std::string_view bytes) {
    if (valid && !isReplaced(character)) {
      result.append(bytes);
    } else {
      appendUtf8(result, kReplacement);
    }
  });
  return result;
}

}  // namespace

std::string validUtf8(std::string_view text) {
  return replaced(text, [](char32_t) { return false; });
}

std::string singleLineText(std::string_view text) {
  return replaced(text, isControlCharacter);
}

std::string withoutControls(std::string_view text) {
  return replaced(text, [](char32_t character) {
    return u_charType(static_cast<UChar32>(character)) == U_CONTROL_CHAR;
  });
}

std::string_view shortened(std::string_view text, std::size_t length) {
  std::size_t end = 0;
  forEachCharacter(text, [&](char32_t, bool, std::string_view bytes) {
    const auto after = static_cast<std::size_t>(bytes.data() - text.data()) + bytes.size();
    if (after <= length) end = after;
  });
  return text.substr(0, end);
}

std::string upperCase(std::string_view text) {
  const std::string valid = validUtf8(text);
  std::string result;
  icu::UnicodeString::fromUTF8({valid.data(), static_cast<std::int32_t>(valid.size())})
      .toUpper(icu::Locale::getRoot())
      .toUTF8String(result);
  return result;
}

std::size_t cellWidth(std::string_view text) {
  std::size_t cells = 0;
  forEachCharacter(
      text, [&](char32_t character, bool, std::string_view) { cells += cellsOf(character); });
  return cells;
}

std::string elidedInTheMiddle(std::string_view text, std::size_t cells) {
  const std::size_t width = cellWidth(text);
  if (width <= cells) return std::string(text);
  if (cells == 0) return {};
  const std::size_t headCells = (cells - 1) / 2;
  const std::size_t tailCells = cells - 1 - headCells;
  std::string head;
  std::string tail;
  std::size_t at = 0;
  forEachCharacter(text, [&](char32_t character, bool, std::string_view bytes) {
    const std::size_t end = at + cellsOf(character);
    // A mark that takes no cell belongs to the letter before it, which may have been left out.
    const bool joins = end == at && tail.empty();
    if (end <= headCells) {
      head += bytes;
    } else if (at >= width - tailCells && !joins) {
      tail += bytes;
    }
    at = end;
  });
  return head + "…" + tail;
}

}  // namespace TextKit
