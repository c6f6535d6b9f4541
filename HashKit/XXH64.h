#pragma once

#include "HashKit/StreamingHasher.h"
#include "HashKit/XXH64Stripes.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace HashKit {

/// The 64-bit xxHash, after the published description of the algorithm ("xxHash fast digest
/// algorithm"). Not a cryptographic digest: it finds damage, not forgery. Throws
/// nothing but std::bad_alloc, in `finalize`. A value: a copy continues on its own.
class XXH64 final : public StreamingHasher {
 public:
  /// Starts a computation that has seen no bytes, with any seed.
  explicit XXH64(std::uint64_t seed);

  /// As StreamingHasher. Absorbs whole stripes of 32 bytes straight from `bytes` and keeps a copy
  /// of at most the last 31 bytes.
  void update(std::span<const std::byte> bytes) override;

  /// Returns the digest of all bytes added so far as a number; the state stays as it was.
  [[nodiscard]] std::uint64_t value() const;

  /// Returns `value()` as exactly 16 lowercase hexadecimal digits, the most significant first (the
  /// canonical form of the algorithm).
  [[nodiscard]] std::string finalize() const override;

 private:
  /// How many of the bytes given so far have not been absorbed: the start of `pending_`.
  [[nodiscard]] std::size_t pendingSize() const;
  /// Returns what is left of `bytes` after filling up `pending_`, absorbing it once it is full.
  std::span<const std::byte> completePending(std::span<const std::byte> bytes);
  [[nodiscard]] std::uint64_t mergedLanes() const;

  std::uint64_t seed_;
  XXH64Lanes lanes_;
  std::uint64_t total_ = 0;
  std::array<std::byte, kXXH64StripeSize> pending_{};
};

}  // namespace HashKit
