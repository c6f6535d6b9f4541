#pragma once

#include "HashKit/StreamingHasher.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>

#include <openssl/types.h>

namespace HashKit {

/// A digest computed by OpenSSL, such as MD5 (RFC 1321) or SHA-256 (FIPS 180-4). Can be moved, not
/// copied; a hasher that was moved from can only be destroyed or assigned to.
class CryptoHasher final : public StreamingHasher {
 public:
  /// Starts a computation that has seen no bytes. `digestName` is OpenSSL's name for a digest of
  /// fixed length, such as "MD5" or "SHA2-256".
  ///
  /// Throws std::runtime_error if OpenSSL does not provide that digest or cannot start it.
  explicit CryptoHasher(const std::string& digestName);

  /// As StreamingHasher. Throws std::runtime_error if OpenSSL fails.
  void update(std::span<const std::byte> bytes) override;

  /// As StreamingHasher: the digest's bytes in their published order. Throws std::runtime_error if
  /// OpenSSL fails.
  [[nodiscard]] std::string finalize() const override;

 private:
  struct ContextDeleter {
    void operator()(EVP_MD_CTX* context) const;
  };
  using Context = std::unique_ptr<EVP_MD_CTX, ContextDeleter>;

  static Context makeContext();

  Context inner_;
};

}  // namespace HashKit
