#include "HashKit/XXH64Arithmetic.h"
#include "HashKit/XXH64Stripes.h"

#if defined(__x86_64__)

#include <array>

#include <immintrin.h>

namespace HashKit {
namespace {

// A lane's chain of add, rotate and multiply cannot be shortened, but on a processor that starts
// one 64-bit multiplication a cycle the other multiplication of each step, word by PRIME2, costs
// more than the chain. AVX2 has no 64-bit multiplication, yet building the products of coming words
// from 32-bit ones uses units that the scalar chain leaves idle. They travel through a ring in
// memory, because moving words out of vector registers is slower than storing and loading them.
constexpr std::size_t kWordsPerStripe = 4;
constexpr std::size_t kRingStripes = 8;
constexpr std::size_t kRingSize = kRingStripes * kXXH64StripeSize;

struct alignas(kXXH64StripeSize) StripeProducts {
  std::array<std::uint64_t, kWordsPerStripe> words;
};
using Ring = std::array<StripeProducts, kRingStripes>;

[[gnu::target("avx2"), gnu::always_inline]] inline void multiplyByPrime2(const std::byte* stripe,
                                                                         StripeProducts& products) {
  const __m256i words = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(stripe));
  // _mm256_mul_epu32 multiplies the low halves of its operands only; high times high would lie
  // above bit 63. A shuffle brings the high halves down, because many processors shift vectors in
  // the very units that multiply.
  const __m256i prime = _mm256_set1_epi64x(static_cast<long long>(kXXH64Prime2));
  const __m256i primeHigh = _mm256_set1_epi64x(static_cast<long long>(kXXH64Prime2 >> 32));
  const __m256i lowByLow = _mm256_mul_epu32(words, prime);
  const __m256i lowByHigh = _mm256_mul_epu32(words, primeHigh);
  const __m256i wordsHigh = _mm256_shuffle_epi32(words, _MM_SHUFFLE(3, 3, 1, 1));
  const __m256i highByLow = _mm256_mul_epu32(wordsHigh, prime);
  const __m256i upper = _mm256_slli_epi64(_mm256_add_epi64(lowByHigh, highByLow), 32);
  _mm256_store_si256(reinterpret_cast<__m256i*>(&products), _mm256_add_epi64(lowByLow, upper));
  // Keeps compilers from holding the ring in vector registers after all.
  asm("" : "+m"(products));
}

[[gnu::always_inline]] inline void absorb(XXH64Lanes& lanes, const StripeProducts& products) {
  lanes.v1 = xxh64StepWithProduct(lanes.v1, products.words[0]);
  lanes.v2 = xxh64StepWithProduct(lanes.v2, products.words[1]);
  lanes.v3 = xxh64StepWithProduct(lanes.v3, products.words[2]);
  lanes.v4 = xxh64StepWithProduct(lanes.v4, products.words[3]);
  // Compilers would gladly put the four lanes into one vector, which makes each chain three times
  // as long; asked for here in general registers, they stay there.
  asm("" : "+r"(lanes.v1), "+r"(lanes.v2), "+r"(lanes.v3), "+r"(lanes.v4));
}

[[gnu::target("avx2")]] void absorbStripesAvx2(XXH64Lanes& lanes,
                                               std::span<const std::byte> stripes) {
  // Filling and draining the ring pays only if it goes round at least once.
  if (stripes.size() < 2 * kRingSize) return absorbXXH64StripesPlain(lanes, stripes);

  Ring ring;
  const std::byte* next = stripes.data();
  const std::byte* const end = next + stripes.size() / kRingSize * kRingSize;
  for (StripeProducts& products : ring) {
    multiplyByPrime2(next, products);
    next += kXXH64StripeSize;
  }
  XXH64Lanes local = lanes;
  while (next != end) {
    for (StripeProducts& products : ring) {
      absorb(local, products);
      multiplyByPrime2(next, products);
      next += kXXH64StripeSize;
    }
  }
  for (const StripeProducts& products : ring) absorb(local, products);
  lanes = local;
  absorbXXH64StripesPlain(lanes, stripes.last(stripes.size() % kRingSize));
}

}  // namespace

XXH64StripeKernel xxh64StripeKernelForAvx2() {
  // Needed before main, where the runtime may not have looked at the processor yet.
  __builtin_cpu_init();
  return __builtin_cpu_supports("avx2") ? absorbStripesAvx2 : nullptr;
}

}  // namespace HashKit

#else

namespace HashKit {

XXH64StripeKernel xxh64StripeKernelForAvx2() {
  return nullptr;
}

}  // namespace HashKit

#endif
