#include "HashKit/XXH64Stripes.h"

#include "HashKit/XXH64Arithmetic.h"

namespace HashKit {
namespace {

XXH64StripeKernel chooseKernel() {
  const XXH64StripeKernel kernel = xxh64StripeKernelForAvx2();
  return kernel != nullptr ? kernel : absorbXXH64StripesPlain;
}

}  // namespace

void absorbXXH64StripesPlain(XXH64Lanes& lanes, std::span<const std::byte> stripes) {
  // The bytes could alias `lanes` as far as the compiler knows; locals stay in registers.
  auto [v1, v2, v3, v4] = lanes;
  const std::byte* const end = stripes.data() + stripes.size();
  for (const std::byte* stripe = stripes.data(); stripe != end; stripe += kXXH64StripeSize) {
    v1 = xxh64Step(v1, readLittleEndian<std::uint64_t>(stripe));
    v2 = xxh64Step(v2, readLittleEndian<std::uint64_t>(stripe + 8));
    v3 = xxh64Step(v3, readLittleEndian<std::uint64_t>(stripe + 16));
    v4 = xxh64Step(v4, readLittleEndian<std::uint64_t>(stripe + 24));
  }
  lanes = {v1, v2, v3, v4};
}

void absorbXXH64Stripes(XXH64Lanes& lanes, std::span<const std::byte> stripes) {
  static const XXH64StripeKernel kernel = chooseKernel();
  kernel(lanes, stripes);
}

}  // namespace HashKit
