#include "HashKit/Hexadecimal.h"

#include <string_view>

namespace HashKit {

std::string lowercaseHexadecimal(std::span<const std::byte> bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const std::byte byte : bytes) {
    text += kDigits[std::to_integer<std::size_t>(byte >> 4)];
    text += kDigits[std::to_integer<std::size_t>(byte & std::byte{0x0F})];
  }
  return text;
}

}  // namespace HashKit
