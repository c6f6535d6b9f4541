#include "HashKit/XXH64.h"

#include "HashKit/Hexadecimal.h"
#include "HashKit/XXH64Arithmetic.h"

#include <algorithm>

namespace HashKit {
namespace {

std::uint64_t mergeLane(std::uint64_t hash, std::uint64_t lane) {
  return (hash ^ xxh64Step(0, lane)) * kXXH64Prime1 + kXXH64Prime4;
}

std::uint64_t mixTail(std::uint64_t hash, std::span<const std::byte> tail) {
  while (tail.size() >= 8) {
    const auto word = readLittleEndian<std::uint64_t>(tail.data());
    hash = std::rotl(hash ^ xxh64Step(0, word), 27) * kXXH64Prime1 + kXXH64Prime4;
    tail = tail.subspan(8);
  }
  if (tail.size() >= 4) {
    const std::uint64_t word = readLittleEndian<std::uint32_t>(tail.data());
    hash = std::rotl(hash ^ (word * kXXH64Prime1), 23) * kXXH64Prime2 + kXXH64Prime3;
    tail = tail.subspan(4);
  }
  for (const std::byte byte : tail) {
    const auto product = std::to_integer<std::uint64_t>(byte) * kXXH64Prime5;
    hash = std::rotl(hash ^ product, 11) * kXXH64Prime1;
  }
  return hash;
}

std::uint64_t avalanche(std::uint64_t hash) {
  hash = (hash ^ (hash >> 33)) * kXXH64Prime2;
  hash = (hash ^ (hash >> 29)) * kXXH64Prime3;
  return hash ^ (hash >> 32);
}

}  // namespace

XXH64::XXH64(std::uint64_t seed)
    : seed_(seed),
      lanes_{seed + kXXH64Prime1 + kXXH64Prime2, seed + kXXH64Prime2, seed, seed - kXXH64Prime1} {}

void XXH64::update(std::span<const std::byte> bytes) {
  if (bytes.empty()) return;
  const std::span<const std::byte> unabsorbed = completePending(bytes);
  total_ += bytes.size();
  const std::size_t tailSize = unabsorbed.size() % kXXH64StripeSize;
  absorbXXH64Stripes(lanes_, unabsorbed.first(unabsorbed.size() - tailSize));
  std::ranges::copy(unabsorbed.last(tailSize), pending_.begin());
}

std::size_t XXH64::pendingSize() const {
  return total_ % kXXH64StripeSize;
}

std::span<const std::byte> XXH64::completePending(std::span<const std::byte> bytes) {
  if (pendingSize() == 0) return bytes;
  const std::size_t taken = std::min(bytes.size(), kXXH64StripeSize - pendingSize());
  std::ranges::copy(bytes.first(taken), pending_.begin() + pendingSize());
  if (pendingSize() + taken == kXXH64StripeSize) absorbXXH64StripesPlain(lanes_, pending_);
  return bytes.subspan(taken);
}

std::uint64_t XXH64::mergedLanes() const {
  const auto& [v1, v2, v3, v4] = lanes_;
  std::uint64_t hash = std::rotl(v1, 1) + std::rotl(v2, 7) + std::rotl(v3, 12) + std::rotl(v4, 18);
  for (const std::uint64_t lane : {v1, v2, v3, v4}) hash = mergeLane(hash, lane);
  return hash;
}

std::uint64_t XXH64::value() const {
  const std::uint64_t start = total_ >= kXXH64StripeSize ? mergedLanes() : seed_ + kXXH64Prime5;
  return avalanche(mixTail(start + total_, std::span(pending_).first(pendingSize())));
}

std::string XXH64::finalize() const {
  const std::uint64_t digest = value();
  std::array<std::byte, sizeof digest> bytes{};
  for (std::size_t index = 0; index < bytes.size(); ++index) {
    bytes[index] = static_cast<std::byte>(digest >> (56 - 8 * index));
  }
  return lowercaseHexadecimal(bytes);
}

}  // namespace HashKit
