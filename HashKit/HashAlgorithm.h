#pragma once

#include "HashKit/StreamingHasher.h"

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace HashKit {

/// The digests this product offers. All functions below may be called from any thread at once;
/// given a value that is none of the enumerators they throw std::out_of_range.
enum class HashAlgorithm { xxh64, md5, sha256 };

/// All algorithms, in the order in which user interfaces list them.
[[nodiscard]] constexpr std::array<HashAlgorithm, 3> allHashAlgorithms() {
  return {HashAlgorithm::xxh64, HashAlgorithm::md5, HashAlgorithm::sha256};
}

/// Returns the text that stands for the algorithm wherever one is stored: "xxh64", "md5", "sha256".
/// The characters live as long as the program.
[[nodiscard]] std::string_view rawValue(HashAlgorithm algorithm);

/// Returns the name under which a hash list in the MHL format records the algorithm; the same text
/// as `rawValue`.
[[nodiscard]] std::string_view mhlName(HashAlgorithm algorithm);

/// Returns the name for people: "XXH64", "MD5", "SHA-256". Not accepted by
/// `hashAlgorithmFromRawValue`. The characters live as long as the program.
[[nodiscard]] std::string_view displayName(HashAlgorithm algorithm);

/// Returns the algorithm whose raw value is exactly `text`, upper and lower case being different,
/// or nothing.
[[nodiscard]] std::optional<HashAlgorithm> hashAlgorithmFromRawValue(std::string_view text);

/// Returns a new hasher that has seen no bytes; the caller owns it. XXH64 starts from seed 0.
///
/// Throws std::runtime_error if the digest library does not provide the algorithm (for MD5, that
/// may be so where only certified algorithms are allowed).
[[nodiscard]] std::unique_ptr<StreamingHasher> makeHasher(HashAlgorithm algorithm);

/// Returns the digest of all of `bytes` as `StreamingHasher::finalize` would. Meant for small data
/// that is in memory anyway; files are streamed through a hasher.
///
/// Throws as `makeHasher` and the hasher do.
[[nodiscard]] std::string hash(HashAlgorithm algorithm, std::span<const std::byte> bytes);

}  // namespace HashKit
