#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

/// The arithmetic of XXH64, after the published description of the algorithm ("xxHash fast digest
/// algorithm", section "XXH64 algorithm description"). Everything is modulo 2^64.
/// Shared by the files of the hasher; not for use outside the module.
namespace HashKit {

inline constexpr std::uint64_t kXXH64Prime1 = 0x9E3779B185EBCA87;
inline constexpr std::uint64_t kXXH64Prime2 = 0xC2B2AE3D27D4EB4F;
inline constexpr std::uint64_t kXXH64Prime3 = 0x165667B19E3779F9;
inline constexpr std::uint64_t kXXH64Prime4 = 0x85EBCA77C2B2AE63;
inline constexpr std::uint64_t kXXH64Prime5 = 0x27D4EB2F165667C5;

/// The round of the published algorithm for a word that was multiplied by PRIME2 beforehand.
[[nodiscard]] constexpr std::uint64_t xxh64StepWithProduct(std::uint64_t accumulator,
                                                           std::uint64_t wordTimesPrime2) {
  return std::rotl(accumulator + wordTimesPrime2, 31) * kXXH64Prime1;
}

/// The round of the published algorithm: what becomes of `accumulator` when it absorbs `word`.
[[nodiscard]] constexpr std::uint64_t xxh64Step(std::uint64_t accumulator, std::uint64_t word) {
  return xxh64StepWithProduct(accumulator, word * kXXH64Prime2);
}

/// Reads a Word (std::uint64_t or std::uint32_t) from the sizeof(Word) bytes at `source`, the first
/// of which is the least significant on every host. `source` needs no alignment.
template <typename Word>
[[nodiscard]] inline Word readLittleEndian(const std::byte* source) {
  static_assert(std::is_same_v<Word, std::uint64_t> || std::is_same_v<Word, std::uint32_t>);
  Word word{};
  std::memcpy(&word, source, sizeof word);
  if constexpr (std::endian::native == std::endian::little) {
    return word;
  } else if constexpr (sizeof word == 8) {
    return __builtin_bswap64(word);
  } else {
    return __builtin_bswap32(word);
  }
}

}  // namespace HashKit
