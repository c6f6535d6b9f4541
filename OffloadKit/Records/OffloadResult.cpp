#include "OffloadKit/Records/OffloadResult.h"

#include <algorithm>
#include <numeric>

namespace OffloadKit {
namespace {

bool isVerifiedEverywhere(const OffloadedFile& file) {
  return std::all_of(file.outcomes.begin(), file.outcomes.end(),
                     [](const OffloadedFile::Outcome& outcome) { return outcome.isVerified(); });
}

}  // namespace

std::uint64_t OffloadResult::totalBytes() const {
  return std::accumulate(
      files.begin(), files.end(), std::uint64_t{0},
      [](std::uint64_t sum, const OffloadedFile& file) { return sum + file.file.size; });
}

bool OffloadResult::allVerified() const {
  return std::all_of(files.begin(), files.end(), isVerifiedEverywhere);
}

std::vector<const OffloadedFile*> OffloadResult::failedFiles() const {
  std::vector<const OffloadedFile*> failed;
  for (const OffloadedFile& file : files) {
    if (!isVerifiedEverywhere(file)) failed.push_back(&file);
  }
  return failed;
}

std::size_t OffloadResult::verifiedCount(std::size_t destination) const {
  return static_cast<std::size_t>(
      std::count_if(files.begin(), files.end(), [destination](const OffloadedFile& file) {
        return file.outcomes.at(destination).isVerified();
      }));
}

}  // namespace OffloadKit
