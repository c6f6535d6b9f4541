#include "OffloadKit/Proof/C4.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include <openssl/evp.h>

namespace OffloadKit {
namespace {

constexpr std::size_t kDigestSize = 64;
constexpr std::size_t kDigits = 88;
constexpr std::string_view kAlphabet = "123456789ABCDEFGHJKLMNPQRSTUVWXYZabcdefghijkmnopqrstuvwxyz";

using Digest = std::array<unsigned char, kDigestSize>;

Digest sha512(std::string_view data) {
  Digest digest{};
  std::size_t size = 0;
  if (EVP_Q_digest(nullptr, "SHA512", nullptr, data.data(), data.size(), digest.data(), &size) !=
          1 ||
      size != digest.size()) {
    throw std::runtime_error("OpenSSL could not compute a SHA-512 digest.");
  }
  return digest;
}

// Divides the number, whose most significant byte comes first, by 58 and answers the remainder.
unsigned divideBy58(Digest& number) {
  unsigned carry = 0;
  for (unsigned char& byte : number) {
    carry = carry * 256 + byte;
    byte = static_cast<unsigned char>(carry / 58);
    carry %= 58;
  }
  return carry;
}

}  // namespace

std::string c4ID(std::string_view data) {
  Digest number = sha512(data);
  std::string digits;
  // Once the number is used up, the remainders are 0 and fill the text up with "1".
  while (digits.size() < kDigits) digits += kAlphabet[divideBy58(number)];
  std::reverse(digits.begin(), digits.end());
  return "c4" + digits;
}

}  // namespace OffloadKit
