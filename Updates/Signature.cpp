#include "Updates/Signature.h"

#include <cstddef>
#include <memory>
#include <utility>

#include <openssl/err.h>
#include <openssl/evp.h>

namespace Updates {
namespace {

constexpr qsizetype kKeySize = 32;
constexpr qsizetype kSignatureSize = 64;

struct KeyDeleter {
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};

struct ContextDeleter {
  void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};

std::optional<QByteArray> decoded(const QByteArray& text, qsizetype size) {
  auto result = QByteArray::fromBase64Encoding(text, QByteArray::AbortOnBase64DecodingErrors);
  if (!result || result.decoded.size() != size) return std::nullopt;
  return std::move(result.decoded);
}

const unsigned char* raw(const QByteArray& bytes) {
  return reinterpret_cast<const unsigned char*>(bytes.constData());
}

std::size_t sizeOf(const QByteArray& bytes) {
  return static_cast<std::size_t>(bytes.size());
}

}  // namespace

PublicKey::PublicKey(QByteArray raw) : raw_(std::move(raw)) {}

std::optional<PublicKey> PublicKey::fromBase64(const QByteArray& text) {
  auto key = decoded(text, kKeySize);
  if (!key) return std::nullopt;
  return PublicKey(std::move(*key));
}

bool PublicKey::hasSigned(const QByteArray& bytes, const QByteArray& signature) const {
  const auto proof = decoded(signature.trimmed(), kSignatureSize);
  if (!proof) return false;
  const std::unique_ptr<EVP_PKEY, KeyDeleter> key(
      EVP_PKEY_new_raw_public_key_ex(nullptr, "ED25519", nullptr, raw(raw_), sizeOf(raw_)));
  const std::unique_ptr<EVP_MD_CTX, ContextDeleter> context(EVP_MD_CTX_new());
  const bool signedByKey =
      key && context &&
      EVP_DigestVerifyInit_ex(context.get(), nullptr, nullptr, nullptr, nullptr, key.get(),
                              nullptr) == 1 &&
      EVP_DigestVerify(context.get(), raw(*proof), sizeOf(*proof), raw(bytes), sizeOf(bytes)) == 1;
  // Reasons left in this thread's queue would be blamed for a later failure.
  if (!signedByKey) ERR_clear_error();
  return signedByKey;
}

}  // namespace Updates
