#include "HashKit/XXH64.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <random>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace HashKit {
namespace {

using Bytes = std::vector<std::byte>;

Bytes randomBytes(std::size_t size) {
  Bytes bytes(size);
  std::mt19937_64 engine(size);
  std::ranges::generate(bytes, [&] { return static_cast<std::byte>(engine()); });
  return bytes;
}

// The published definition over a whole message, with nothing of the product in it.
class Definition {
 public:
  static std::uint64_t digest(std::span<const std::byte> message, std::uint64_t seed) {
    std::size_t at = 0;
    std::uint64_t hash = seed + p5;
    if (message.size() >= 32) {
      std::uint64_t lanes[] = {seed + p1 + p2, seed + p2, seed, seed - p1};
      for (; at + 32 <= message.size(); at += 32) {
        for (std::size_t i = 0; i < 4; ++i)
          lanes[i] = round(lanes[i], word(message, at + 8 * i, 8));
      }
      hash = std::rotl(lanes[0], 1) + std::rotl(lanes[1], 7) + std::rotl(lanes[2], 12) +
             std::rotl(lanes[3], 18);
      for (const std::uint64_t lane : lanes) hash = (hash ^ round(0, lane)) * p1 + p4;
    }
    hash += message.size();
    for (; at + 8 <= message.size(); at += 8) {
      hash = std::rotl(hash ^ round(0, word(message, at, 8)), 27) * p1 + p4;
    }
    if (at + 4 <= message.size()) {
      hash = std::rotl(hash ^ (word(message, at, 4) * p1), 23) * p2 + p3;
      at += 4;
    }
    for (; at < message.size(); ++at) hash = std::rotl(hash ^ (word(message, at, 1) * p5), 11) * p1;
    hash = (hash ^ (hash >> 33)) * p2;
    hash = (hash ^ (hash >> 29)) * p3;
    return hash ^ (hash >> 32);
  }

 private:
  static constexpr std::uint64_t p1 = 11400714785074694791U;
  static constexpr std::uint64_t p2 = 14029467366897019727U;
  static constexpr std::uint64_t p3 = 1609587929392839161U;
  static constexpr std::uint64_t p4 = 9650029242287828579U;
  static constexpr std::uint64_t p5 = 2870177450012600261U;

  static std::uint64_t round(std::uint64_t lane, std::uint64_t word) {
    return std::rotl(lane + word * p2, 31) * p1;
  }

  static std::uint64_t word(std::span<const std::byte> message, std::size_t at, std::size_t size) {
    std::uint64_t value = 0;
    for (std::size_t i = size; i-- > 0;) {
      value = value << 8 | std::to_integer<std::uint64_t>(message[at + i]);
    }
    return value;
  }
};

std::string digest(std::span<const std::byte> message, std::uint64_t seed) {
  XXH64 hasher(seed);
  hasher.update(message);
  return hasher.finalize();
}

TEST(XXH64, GivesThePublishedDigests) {
  const auto digestOfText = [](std::string_view text, std::uint64_t seed) {
    return digest(std::as_bytes(std::span(text)), seed);
  };
  EXPECT_EQ(digestOfText("", 0), "ef46db3751d8e999");
  EXPECT_EQ(digestOfText("", 2654435761), "ac75fda2929b17ef");
  EXPECT_EQ(digestOfText("abc", 0), "44bc2cf5ad770999");
  EXPECT_EQ(digestOfText("xxhash", 20141025), "b559b98d844e0635");
  EXPECT_EQ(digestOfText("Nobody inspects the spammish repetition", 0), "fbcea83c8a378bf1");

  Bytes sanityBuffer(222);
  std::uint64_t generator = 2654435761;
  for (std::byte& byte : sanityBuffer) {
    byte = static_cast<std::byte>(generator >> 56);
    generator *= 11400714785074694797U;
  }
  EXPECT_EQ(digest(std::span(sanityBuffer).first(14), 0), "8282dcc4994e35c8");
  EXPECT_EQ(digest(sanityBuffer, 0), "b641ae8cb691c174");
  EXPECT_EQ(digest(sanityBuffer, 2654435761), "20cb8ab7ae10c14a");
}

TEST(XXH64, FollowsTheDefinitionAtEveryLengthAlignmentAndSeed) {
  for (std::size_t length = 0; length <= 1100; ++length) {
    for (const std::size_t offset : {0U, 1U, 3U, 8U}) {
      // Of the exact size, so that an address sanitizer sees a read past the end.
      const Bytes bytes = randomBytes(offset + length);
      const std::span<const std::byte> message = std::span(bytes).subspan(offset);
      for (const std::uint64_t seed : {std::uint64_t{0}, ~std::uint64_t{offset}}) {
        XXH64 hasher(seed);
        hasher.update(message);
        ASSERT_EQ(hasher.value(), Definition::digest(message, seed))
            << "length " << length << ", offset " << offset << ", seed " << seed;
      }
    }
  }
}

// The length is part of the digest, and a clip is often longer than 32 bits can count.
TEST(XXH64, CountsMoreThanFourGibibytes) {
  const Bytes zeros(std::size_t{16} << 20);
  XXH64 hasher(0);
  for (int count = 0; count < 256; ++count) hasher.update(zeros);
  hasher.update(std::span(zeros).first(33));
  EXPECT_EQ(hasher.finalize(), "503845eb5a8696ea");
}

TEST(XXH64StripeKernels, Agree) {
  const XXH64StripeKernel avx2 = xxh64StripeKernelForAvx2();
  if (avx2 == nullptr) GTEST_SKIP() << "This processor has no AVX2.";
  const auto expectSameLanes = [&](const Bytes& bytes, std::size_t offset) {
    const std::span<const std::byte> stripes = std::span(bytes).subspan(offset);
    XXH64Lanes plainLanes{1, ~std::uint64_t{0}, std::uint64_t{1} << 63, 0x123456789ABCDEF0};
    XXH64Lanes avx2Lanes = plainLanes;
    absorbXXH64StripesPlain(plainLanes, stripes);
    avx2(avx2Lanes, stripes);
    EXPECT_EQ(plainLanes, avx2Lanes) << stripes.size() << " bytes at offset " << offset;
  };
  for (std::size_t count = 0; count <= 50; ++count) {
    for (std::size_t offset = 0; offset < 32; ++offset) {
      expectSameLanes(randomBytes(offset + count * kXXH64StripeSize), offset);
    }
  }
  // Products whose partial sums carry into every bit.
  expectSameLanes(Bytes(4096, std::byte{0xFF}), 0);
  expectSameLanes(randomBytes(std::size_t{1} << 20), 0);
}

}  // namespace
}  // namespace HashKit
