#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <vector>

/// What a fuzzer calls with every input, and Replay with every file of the corpus. Answers 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace Fuzz {

/// Ends the program, so that the input is kept, unless the property holds. `property`: a sentence.
inline void require(bool holds, const char* property) {
  if (holds) return;
  std::fprintf(stderr, "This does not hold: %s\n", property);
  std::abort();
}

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

/// The parts of the text between zero bytes: as many as there are, but at least one and at most
/// `most`; what is left over belongs to none.
inline std::vector<std::string_view> partsOf(std::string_view text, std::size_t most) {
  std::vector<std::string_view> parts;
  while (parts.size() < most) {
    const std::size_t end = text.find('\0');
    parts.push_back(text.substr(0, end));
    if (end == std::string_view::npos) break;
    text.remove_prefix(end + 1);
  }
  return parts;
}

/// A number made of the first bytes of the text.
inline std::uint64_t numberOf(std::string_view text) {
  std::uint64_t number = 0;
  if (!text.empty()) {
    std::memcpy(&number, text.data(), text.size() < sizeof number ? text.size() : sizeof number);
  }
  return number;
}

}  // namespace Fuzz
