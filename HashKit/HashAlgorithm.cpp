#include "HashKit/HashAlgorithm.h"

#include "HashKit/CryptoHasher.h"
#include "HashKit/XXH64.h"

namespace HashKit {
namespace {

struct Description {
  HashAlgorithm algorithm;
  std::string_view rawValue;
  std::string_view displayName;
  std::unique_ptr<StreamingHasher> (*makeHasher)();
};

std::unique_ptr<StreamingHasher> makeXXH64() {
  return std::make_unique<XXH64>(0);
}

std::unique_ptr<StreamingHasher> makeMD5() {
  return std::make_unique<CryptoHasher>("MD5");
}

std::unique_ptr<StreamingHasher> makeSHA256() {
  return std::make_unique<CryptoHasher>("SHA2-256");
}

constexpr std::array<Description, allHashAlgorithms().size()> kDescriptions{{
    {HashAlgorithm::xxh64, "xxh64", "XXH64", makeXXH64},
    {HashAlgorithm::md5, "md5", "MD5", makeMD5},
    {HashAlgorithm::sha256, "sha256", "SHA-256", makeSHA256},
}};

constexpr bool everyDescriptionIsAtItsIndex() {
  for (std::size_t index = 0; index < kDescriptions.size(); ++index) {
    if (static_cast<std::size_t>(kDescriptions[index].algorithm) != index) return false;
  }
  return true;
}
static_assert(everyDescriptionIsAtItsIndex());

const Description& describe(HashAlgorithm algorithm) {
  return kDescriptions.at(static_cast<std::size_t>(algorithm));
}

}  // namespace

std::string_view rawValue(HashAlgorithm algorithm) {
  return describe(algorithm).rawValue;
}

std::string_view mhlName(HashAlgorithm algorithm) {
  return rawValue(algorithm);
}

std::string_view displayName(HashAlgorithm algorithm) {
  return describe(algorithm).displayName;
}

std::optional<HashAlgorithm> hashAlgorithmFromRawValue(std::string_view text) {
  for (const Description& description : kDescriptions) {
    if (description.rawValue == text) return description.algorithm;
  }
  return std::nullopt;
}

std::unique_ptr<StreamingHasher> makeHasher(HashAlgorithm algorithm) {
  return describe(algorithm).makeHasher();
}

std::string hash(HashAlgorithm algorithm, std::span<const std::byte> bytes) {
  const std::unique_ptr<StreamingHasher> hasher = makeHasher(algorithm);
  hasher->update(bytes);
  return hasher->finalize();
}

}  // namespace HashKit
