#include "HashKit/CryptoHasher.h"
#include "HashKit/HashAlgorithm.h"

#include <algorithm>
#include <random>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

namespace HashKit {
namespace {

std::span<const std::byte> bytesOf(std::string_view text) {
  return std::as_bytes(std::span(text));
}

TEST(HashAlgorithm, HasTheStoredAndTheShownNames) {
  std::vector<std::string> names;
  for (const HashAlgorithm algorithm : allHashAlgorithms()) {
    names.insert(names.end(), {std::string(rawValue(algorithm)), std::string(mhlName(algorithm)),
                               std::string(displayName(algorithm))});
  }
  EXPECT_EQ(names, (std::vector<std::string>{"xxh64", "xxh64", "XXH64", "md5", "md5", "MD5",
                                             "sha256", "sha256", "SHA-256"}));
  EXPECT_THROW(static_cast<void>(rawValue(static_cast<HashAlgorithm>(3))), std::out_of_range);
}

TEST(HashAlgorithm, IsParsedFromExactRawValuesOnly) {
  for (const HashAlgorithm algorithm : allHashAlgorithms()) {
    EXPECT_EQ(hashAlgorithmFromRawValue(rawValue(algorithm)), algorithm);
  }
  for (const char* text : {"", "XXH64", "MD5", "SHA-256", "SHA256", "sha25", "sha2560", " md5"}) {
    EXPECT_EQ(hashAlgorithmFromRawValue(text), std::nullopt) << text;
  }
}

TEST(HashAlgorithm, GivesThePublishedDigests) {
  const auto* const twoBlocks = "abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq";
  EXPECT_EQ(hash(HashAlgorithm::xxh64, {}), "ef46db3751d8e999");
  EXPECT_EQ(hash(HashAlgorithm::md5, {}), "d41d8cd98f00b204e9800998ecf8427e");
  EXPECT_EQ(hash(HashAlgorithm::md5, bytesOf("message digest")),
            "f96b697d7cb7938d525a2f31aaf161d0");
  EXPECT_EQ(hash(HashAlgorithm::sha256, {}),
            "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(hash(HashAlgorithm::sha256, bytesOf(twoBlocks)),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
}

TEST(HashAlgorithm, KeepsLeadingZeros) {
  EXPECT_EQ(hash(HashAlgorithm::xxh64, bytesOf("363")), "005cff848095736d");
  EXPECT_EQ(hash(HashAlgorithm::md5, bytesOf("168")), "006f52e9102a8d3be2fe5614f42ba989");
  EXPECT_EQ(hash(HashAlgorithm::sha256, bytesOf("286")),
            "00328ce57bbc14b33bd6695bc8eb32cdf2fb5f3a7d89ec14a42825e15d39df60");
}

class EveryAlgorithm : public testing::TestWithParam<HashAlgorithm> {};

// Reads the digest twice after every piece, so a state that reading disturbs shows as well.
TEST_P(EveryAlgorithm, GivesTheSameDigestHoweverTheInputIsCut) {
  std::mt19937 engine(3);
  std::vector<std::byte> message(5000);
  for (std::byte& byte : message) byte = static_cast<std::byte>(engine());
  for (const std::size_t largestPiece : {1U, 31U, 33U, 100U, 2000U}) {
    std::uniform_int_distribution<std::size_t> pieceSize(0, largestPiece);
    const auto hasher = makeHasher(GetParam());
    for (std::size_t given = 0; given < message.size();) {
      const std::size_t size = std::min(pieceSize(engine), message.size() - given);
      hasher->update(std::span(message).subspan(given, size));
      hasher->update({});
      given += size;
      const std::string expected = hash(GetParam(), std::span(message).first(given));
      ASSERT_EQ(hasher->finalize(), expected) << given << " bytes, pieces up to " << largestPiece;
      ASSERT_EQ(hasher->finalize(), expected);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(HashAlgorithms, EveryAlgorithm, testing::ValuesIn(allHashAlgorithms()),
                         [](const auto& algorithm) {
                           return std::string(rawValue(algorithm.param));
                         });

TEST(CryptoHasher, NamesTheDigestThatIsNotProvided) {
  try {
    const CryptoHasher hasher("NO-SUCH-DIGEST");
    FAIL() << "made a hasher";
  } catch (const std::runtime_error& error) {
    EXPECT_NE(std::string_view(error.what()).find("NO-SUCH-DIGEST"), std::string_view::npos);
  }
}

}  // namespace
}  // namespace HashKit
