// Each digest of ours next to a peer, over the same bytes in the same pieces: XXH64 next to
// libxxhash, MD5 and SHA-256 next to OpenSSL called directly. Names are DIGEST/WHOSE, so dividing
// the bytes_per_second of DIGEST/ours by that of its peer gives the ratio; above 1 is faster. The
// clock of a processor wanders, so compare medians of interleaved repetitions:
//   HashBenchmark --benchmark_repetitions=9 --benchmark_enable_random_interleaving=true
//                 --benchmark_report_aggregates_only=true
#include "HashKit/HashAlgorithm.h"
#include "HashKit/XXH64Stripes.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <span>
#include <stdexcept>
#include <vector>

#include <benchmark/benchmark.h>
#include <openssl/evp.h>
#include <xxhash.h>

namespace {

constexpr std::size_t kPieceSize = std::size_t{8} << 20;
constexpr std::size_t kPiecesPerDigest = 8;

std::span<const std::byte> piece() {
  static const std::vector<std::byte> bytes = [] {
    std::vector<std::byte> random(kPieceSize);
    std::mt19937_64 engine(1);
    for (std::byte& byte : random) byte = static_cast<std::byte>(engine());
    return random;
  }();
  return bytes;
}

void reportSpeed(benchmark::State& state) {
  state.SetBytesProcessed(state.iterations() *
                          static_cast<std::int64_t>(kPieceSize * kPiecesPerDigest));
}

void digestOurs(benchmark::State& state, HashKit::HashAlgorithm algorithm) {
  const std::span<const std::byte> bytes = piece();
  while (state.KeepRunning()) {
    const auto hasher = HashKit::makeHasher(algorithm);
    for (std::size_t count = 0; count < kPiecesPerDigest; ++count) hasher->update(bytes);
    benchmark::DoNotOptimize(hasher->finalize());
  }
  reportSpeed(state);
}

void digestLibxxhash(benchmark::State& state) {
  const std::span<const std::byte> bytes = piece();
  const std::unique_ptr<XXH64_state_t, decltype(&XXH64_freeState)> hasher(XXH64_createState(),
                                                                          XXH64_freeState);
  while (state.KeepRunning()) {
    XXH64_reset(hasher.get(), 0);
    for (std::size_t count = 0; count < kPiecesPerDigest; ++count) {
      XXH64_update(hasher.get(), bytes.data(), bytes.size());
    }
    benchmark::DoNotOptimize(XXH64_digest(hasher.get()));
  }
  reportSpeed(state);
}

void digestOpenSSL(benchmark::State& state, const EVP_MD* (*function)()) {
  const std::span<const std::byte> bytes = piece();
  const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(),
                                                                        EVP_MD_CTX_free);
  while (state.KeepRunning()) {
    unsigned char digest[EVP_MAX_MD_SIZE];
    bool succeeded = EVP_DigestInit_ex(context.get(), function(), nullptr) == 1;
    for (std::size_t count = 0; count < kPiecesPerDigest; ++count) {
      succeeded &= EVP_DigestUpdate(context.get(), bytes.data(), bytes.size()) == 1;
    }
    succeeded &= EVP_DigestFinal_ex(context.get(), digest, nullptr) == 1;
    if (!succeeded) throw std::runtime_error("OpenSSL failed to compute a digest.");
    benchmark::DoNotOptimize(digest);
  }
  reportSpeed(state);
}

// What processors without AVX2 get.
void absorbPlain(benchmark::State& state) {
  const std::span<const std::byte> bytes = piece();
  HashKit::XXH64Lanes lanes{};
  while (state.KeepRunning()) {
    for (std::size_t count = 0; count < kPiecesPerDigest; ++count) {
      HashKit::absorbXXH64StripesPlain(lanes, bytes);
    }
    benchmark::DoNotOptimize(lanes);
  }
  reportSpeed(state);
}

using HashKit::HashAlgorithm;

BENCHMARK_CAPTURE(digestOurs, XXH64, HashAlgorithm::xxh64)->Name("XXH64/ours");
BENCHMARK(absorbPlain)->Name("XXH64/oursPlainLoop");
BENCHMARK(digestLibxxhash)->Name("XXH64/libxxhash");
BENCHMARK_CAPTURE(digestOurs, MD5, HashAlgorithm::md5)->Name("MD5/ours");
BENCHMARK_CAPTURE(digestOpenSSL, MD5, EVP_md5)->Name("MD5/openssl");
BENCHMARK_CAPTURE(digestOurs, SHA256, HashAlgorithm::sha256)->Name("SHA-256/ours");
BENCHMARK_CAPTURE(digestOpenSSL, SHA256, EVP_sha256)->Name("SHA-256/openssl");

}  // namespace

BENCHMARK_MAIN();
