#pragma once

#include <optional>

#include <QByteArray>

namespace Updates {

/// A public key of Ed25519 (RFC 8032). A value; any thread.
class PublicKey {
 public:
  /// Reads base64 of the 32 raw bytes, with nothing before or after it. None for anything else.
  [[nodiscard]] static std::optional<PublicKey> fromBase64(const QByteArray& text);

  /// Whether `signature`, in base64 with white space around it allowed, was made over exactly these
  /// bytes with the private half of this key. Also false when OpenSSL fails.
  [[nodiscard]] bool hasSigned(const QByteArray& bytes, const QByteArray& signature) const;

 private:
  explicit PublicKey(QByteArray raw);

  QByteArray raw_;
};

}  // namespace Updates
