#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

/// The inner loop of XXH64. Internal to the module; visible so that tests can hold the kernels
/// against each other.
namespace HashKit {

/// A stripe is what the four lanes absorb in one round: a little-endian 64-bit word each.
inline constexpr std::size_t kXXH64StripeSize = 32;

/// The four lane accumulators.
struct XXH64Lanes {
  std::uint64_t v1;
  std::uint64_t v2;
  std::uint64_t v3;
  std::uint64_t v4;

  bool operator==(const XXH64Lanes&) const = default;
};

/// Absorbs `stripes`, whose size must be a multiple of kXXH64StripeSize (0 is one), into `lanes`.
/// The bytes need no alignment. All kernels give the same lanes; none throws or keeps a state of
/// its own, so they may run on any thread.
using XXH64StripeKernel = void (*)(XXH64Lanes& lanes, std::span<const std::byte> stripes);

/// The kernel for every processor.
void absorbXXH64StripesPlain(XXH64Lanes& lanes, std::span<const std::byte> stripes);

/// Returns the kernel for x86-64 processors with AVX2, or null if this processor is none. Safe from
/// any thread, also before main.
[[nodiscard]] XXH64StripeKernel xxh64StripeKernelForAvx2();

/// Absorbs with the fastest kernel of this processor, which is chosen at the first call.
void absorbXXH64Stripes(XXH64Lanes& lanes, std::span<const std::byte> stripes);

}  // namespace HashKit
