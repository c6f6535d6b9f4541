#include "OffloadKit/Proof/MHLEntry.h"

#include "TextKit/Unicode.h"

#include <fmt/format.h>

namespace OffloadKit::MHL {
namespace {

// XML 1.0's characters, without the carriage return, which readers do not leave as it is.
bool isCarried(char32_t character) {
  if (character < 0x20) return character == '\t' || character == '\n';
  return character != 0xFFFE && character != 0xFFFF;
}

}  // namespace

std::string carriedPath(std::string_view path) {
  bool needsEscapes = false;
  TextKit::forEachCharacter(path, [&](char32_t character, bool valid, std::string_view) {
    needsEscapes |= !valid || !isCarried(character);
  });
  if (!needsEscapes) return std::string(path);
  std::string carried;
  TextKit::forEachCharacter(path, [&](char32_t character, bool valid, std::string_view bytes) {
    if (valid && isCarried(character) && character != U'%') {
      carried += bytes;
      return;
    }
    for (const char byte : bytes) {
      carried += fmt::format("%{:02X}", static_cast<unsigned char>(byte));
    }
  });
  return carried;
}

}  // namespace OffloadKit::MHL
