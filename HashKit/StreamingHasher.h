#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace HashKit {

/// An incremental computation of one digest. Takes any number of `update` calls and may be read at
/// any point; a new digest needs a new hasher.
///
/// A hasher has no lock: it belongs to one thread at a time.
class StreamingHasher {
 public:
  virtual ~StreamingHasher() = default;

  /// Adds `bytes` to the end of what is hashed. How the input is cut into calls never changes the
  /// digest; an empty span, also one without storage, changes nothing. The bytes are only borrowed
  /// for the call.
  ///
  /// Throws std::runtime_error if the digest library fails (MD5 and SHA-256 only); what the hasher
  /// holds is then unusable.
  virtual void update(std::span<const std::byte> bytes) = 0;

  /// Returns the digest of all bytes added so far as lowercase hexadecimal text, two digits a byte:
  /// 16 characters for XXH64, 32 for MD5, 64 for SHA-256. Two digests are the same exactly when
  /// their texts are equal. The state stays as it was: more bytes may follow, and asking again
  /// gives the same text.
  ///
  /// Throws std::runtime_error if the digest library fails (MD5 and SHA-256 only).
  [[nodiscard]] virtual std::string finalize() const = 0;
};

}  // namespace HashKit
