// Hash lists of large cards: writes one of 200,000 rows (budget: 1 s and a peak of 200 MB) and
// looks up 20,000 rows in a history of 50 lists of as many rows (budget: 2 s). Medians of five.
#include "OffloadKit/Proof/MHL.h"
#include "OffloadKit/Proof/MHLDocuments.h"
#include "OffloadKit/Proof/MHLHistory.h"
#include "PlatformKit/Linux/LinuxFileSystem.h"
#include "PlatformKit/Linux/LinuxVolumes.h"
#include "PlatformKit/System.h"
#include "PlatformKit/Testing/TempFolder.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include <sys/resource.h>

namespace {

using OffloadKit::MHL::ChainEntry;
using OffloadKit::MHL::Entry;

constexpr auto kAlgorithm = HashKit::HashAlgorithm::xxh64;
constexpr int kRounds = 5;

std::string pathOf(std::size_t number) {
  std::array<char, 64> path{};
  std::snprintf(path.data(), path.size(), "DCIM/%03zuCANON/IMG_%zu.CR3", 100 + number / 1000,
                number);
  return path.data();
}

std::string hashOf(std::size_t number) {
  std::array<char, 17> hash{};
  std::snprintf(hash.data(), hash.size(), "%016zx", number * 0x9E3779B97F4A7C15U);
  return hash.data();
}

double medianSeconds(const std::function<void()>& action) {
  std::vector<double> values;
  for (int round = 0; round < kRounds; ++round) {
    const auto start = std::chrono::steady_clock::now();
    action();
    values.push_back(
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  }
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

bool writesWithinBudget(PlatformKit::System system) {
  constexpr std::size_t kRows = 200'000;
  std::vector<OffloadKit::OffloadedFile> files;
  files.reserve(kRows);
  for (std::size_t i = 0; i < kRows; ++i) {
    files.push_back({{pathOf(i), 25'000'000 + i, system.clock.now(), {}},
                     hashOf(i),
                     {OffloadKit::OffloadedFile::Outcome::verified(false)}});
  }
  const PlatformKit::Testing::TempFolder folder;
  int round = 0;
  const double seconds = medianSeconds([&] {
    const auto landing = folder.path() / std::to_string(++round);
    if (createFolders(system.fileSystem, landing) != 0) std::abort();
    const auto held = system.fileSystem.openFolder(landing, PlatformKit::Mounts::refused);
    OffloadKit::MHL::writeGeneration(*held.value(), "A001", files, 0, {}, kAlgorithm,
                                     system.clock.now());
  });
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const double peak = static_cast<double>(usage.ru_maxrss) * 1024 / 1e6;
  std::printf("write a list of %zu rows: %.2f s (budget 1 s), peak %.0f MB (budget 200 MB)\n",
              kRows, seconds, peak);
  return seconds <= 1 && peak <= 200;
}

bool readsWithinBudget(PlatformKit::System system) {
  constexpr std::size_t kRows = 20'000;
  constexpr std::int64_t kLists = 50;
  std::vector<Entry> rows;
  for (std::size_t i = 0; i < kRows; ++i) {
    rows.push_back({pathOf(i), 25'000'000 + i, system.clock.now(), hashOf(i)});
  }
  // Only the last list has the last row, so each must be read to its end.
  std::vector<Entry> earlier = rows;
  earlier.back().path += ".old";
  const PlatformKit::Testing::TempFolder lists;
  std::vector<ChainEntry> chain;
  for (std::int64_t i = 1; i <= kLists; ++i) {
    const auto& listed = i == kLists ? rows : earlier;
    chain.push_back({i, std::to_string(i) + ".mhl", std::string(90, 'c')});
    PlatformKit::Testing::writeFile(
        lists.path() / chain.back().path,
        OffloadKit::MHL::generationDocument(listed, std::vector<bool>(kRows, i > 1), kAlgorithm,
                                            system.clock.now()));
  }
  PlatformKit::Testing::writeFile(lists.path() / OffloadKit::MHL::kChainName,
                                  OffloadKit::MHL::chainDocument(chain));
  const double seconds = medianSeconds([&] {
    const auto found = OffloadKit::MHL::readChain(system.fileSystem, lists.path());
    const auto known = OffloadKit::MHL::knownRows(system.fileSystem, lists.path(), found, rows);
    if (std::find(known.begin(), known.end(), false) != known.end()) std::abort();
  });
  std::printf("read a history of %lld lists of %zu rows: %.2f s (budget 2 s)\n",
              static_cast<long long>(kLists), kRows, seconds);
  return seconds <= 2;
}

}  // namespace

int main() {
  PlatformKit::LinuxFileSystem fileSystem;
  PlatformKit::LinuxVolumes volumes;
  const PlatformKit::SystemClock clock;
  const PlatformKit::System system{fileSystem, volumes, clock};
  const bool writes = writesWithinBudget(system);
  const bool reads = readsWithinBudget(system);
  return writes && reads ? 0 : 1;
}
