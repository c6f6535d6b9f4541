#include "Updates/Signature.h"
#include "fuzz/Input.h"

#include <QByteArray>

namespace {

// Its private half signed one text, "feed", and is gone. The corpus has the signature.
constexpr const char* kKey = "mWH7X/yUKSjjnfYgOwDoa29LYun0DpdcrXsMDLoj5JI=";

QByteArray bytesOf(std::string_view text) {
  return {text.data(), static_cast<qsizetype>(text.size())};
}

}  // namespace

/// Input: a key, a signature and the bytes that it may be of, with zero bytes between.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  auto parts = Fuzz::partsOf(Fuzz::textOf(data, size), 3);
  parts.resize(3);
  const QByteArray signature = bytesOf(parts[1]);
  const QByteArray bytes = bytesOf(parts[2]);
  if (Updates::PublicKey::fromBase64(kKey)->hasSigned(bytes, signature)) {
    Fuzz::require(bytes == "feed", "a signature holds for nothing else");
    Fuzz::require(signature.trimmed().size() <= 88, "a signature has its length");
  }
  // Some keys have no private half and verify anything; ours is built in, so this is no harm.
  if (const auto key = Updates::PublicKey::fromBase64(bytesOf(parts[0]))) {
    Fuzz::require(parts[0].size() == 43 || parts[0].size() == 44, "a key has its length");
    static_cast<void>(key->hasSigned(bytes, signature));
  }
  return 0;
}
