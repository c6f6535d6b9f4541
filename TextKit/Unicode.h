#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace TextKit {

/// Text that came from outside is bytes that should be UTF-8. All functions take any bytes, treat
/// each byte that belongs to no valid sequence as one invalid character, and may be called from any
/// thread.

/// Calls `visit(character, valid, bytes)` for every character in order: its code point (U+FFFD when
/// invalid), whether it was valid, and the bytes it stands for.
template <class Visit>
void forEachCharacter(std::string_view text, Visit visit);

/// Unicode categories Cc and Cf: controls, line breaks, tabs, direction marks.
bool isControlCharacter(char32_t character);

/// The space separators (Zs) and the tab.
bool isSpaceCharacter(char32_t character);

/// What text is trimmed of: the space separators, the tab and every kind of line break.
bool isSpaceOrLineBreak(char32_t character);

/// The text without spaces and line breaks at both ends. The result refers to `text`.
std::string_view trimmed(std::string_view text);

/// Adds one code point to `text` as UTF-8.
void appendUtf8(std::string& text, char32_t character);

/// The text with every invalid byte as U+FFFD: always valid UTF-8.
std::string validUtf8(std::string_view text);

/// The text fit for one line of a screen: as `validUtf8`, and control characters, which could move
/// the cursor or hide text, as U+FFFD too.
std::string singleLineText(std::string_view text);

/// As `validUtf8`, and control characters of category Cc as U+FFFD; direction and joining marks,
/// which belong to many names, stay.
std::string withoutControls(std::string_view text);

/// The beginning of the text, at most `length` bytes of it, with no character cut in two. The
/// result refers to `text`.
std::string_view shortened(std::string_view text, std::size_t length);

/// The text in upper case by Unicode's rules, independent of the locale.
std::string upperCase(std::string_view text);

/// How many terminal cells the text takes: 2 for wide characters, 0 for combining ones.
std::size_t cellWidth(std::string_view text);

/// The text cut to at most `cells` terminal cells; what is left out in the middle becomes "…".
std::string elidedInTheMiddle(std::string_view text, std::size_t cells);

namespace Detail {
/// Decodes the character at `position`, moves `position` behind it, and tells whether it was valid.
bool nextCharacter(std::string_view text, std::size_t& position, char32_t& character);
}  // namespace Detail

template <class Visit>
void forEachCharacter(std::string_view text, Visit visit) {
  std::size_t position = 0;
  while (position < text.size()) {
    const std::size_t start = position;
    char32_t character = 0;
    const bool valid = Detail::nextCharacter(text, position, character);
    visit(character, valid, text.substr(start, position - start));
  }
}

}  // namespace TextKit
