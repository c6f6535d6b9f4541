#include "HashKit/CryptoHasher.h"

#include "HashKit/Hexadecimal.h"

#include <array>
#include <stdexcept>

#include <openssl/err.h>
#include <openssl/evp.h>

namespace HashKit {
namespace {

struct DigestDeleter {
  void operator()(EVP_MD* digest) const { EVP_MD_free(digest); }
};

[[noreturn]] void throwFailure(const std::string& what) {
  std::array<char, 256> reason{};
  ERR_error_string_n(ERR_peek_last_error(), reason.data(), reason.size());
  // Reasons left in this thread's queue would be blamed for a later failure.
  ERR_clear_error();
  throw std::runtime_error(what + " (" + reason.data() + ").");
}

}  // namespace

void CryptoHasher::ContextDeleter::operator()(EVP_MD_CTX* context) const {
  EVP_MD_CTX_free(context);
}

CryptoHasher::Context CryptoHasher::makeContext() {
  Context context(EVP_MD_CTX_new());
  if (!context) throwFailure("OpenSSL could not allocate the state of a digest");
  return context;
}

CryptoHasher::CryptoHasher(const std::string& digestName) : inner_(makeContext()) {
  const std::unique_ptr<EVP_MD, DigestDeleter> digest(
      EVP_MD_fetch(nullptr, digestName.c_str(), nullptr));
  if (!digest) throwFailure("OpenSSL does not provide the digest " + digestName);
  if (EVP_DigestInit_ex(inner_.get(), digest.get(), nullptr) != 1) {
    throwFailure("OpenSSL could not start the digest " + digestName);
  }
}

void CryptoHasher::update(std::span<const std::byte> bytes) {
  if (EVP_DigestUpdate(inner_.get(), bytes.data(), bytes.size()) != 1) {
    throwFailure("OpenSSL could not add bytes to a digest");
  }
}

std::string CryptoHasher::finalize() const {
  // OpenSSL closes the state whose digest it returns; the copy is closed in place of ours.
  const Context copy = makeContext();
  if (EVP_MD_CTX_copy_ex(copy.get(), inner_.get()) != 1) {
    throwFailure("OpenSSL could not copy the state of a digest");
  }
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned int size = 0;
  if (EVP_DigestFinal_ex(copy.get(), digest.data(), &size) != 1) {
    throwFailure("OpenSSL could not finish a digest");
  }
  return lowercaseHexadecimal(std::as_bytes(std::span(digest).first(size)));
}

}  // namespace HashKit
