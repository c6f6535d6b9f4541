#include "OffloadKit/Records/Verdict.h"

#include <algorithm>

namespace OffloadKit {
namespace {

using Finding = Verdict::Finding;

struct Row {
  Finding finding;
  bool (*isFound)(const OffloadResult& result);
  bool isGood;
  bool mayEject;
};

bool isImageIncomplete(const OffloadResult& result) {
  if (!result.cardImage) return result.plan.cardImage.has_value();
  return !result.cardImage->outcome.isVerified() || result.cardImage->unreadableBlocks > 0;
}

constexpr std::array kTable = {
    Row{Finding::notVerified, [](const OffloadResult& result) { return !result.allVerified(); },
        false, false},
    Row{Finding::cardUnreadable,
        [](const OffloadResult& result) { return !result.unreadable.empty(); }, false, false},
    Row{Finding::imageIncomplete, isImageIncomplete, false, false},
    Row{Finding::recordMissing,
        [](const OffloadResult& result) { return !result.missingRecords.empty(); }, false, false},
    Row{Finding::throughCache,
        [](const OffloadResult& result) { return !result.readThroughCache.empty(); }, true, true},
    Row{Finding::nothing, [](const OffloadResult& /*result*/) { return true; }, true, true},
};

constexpr bool isInOrder() {
  for (std::size_t i = 0; i < kTable.size(); ++i) {
    if (static_cast<std::size_t>(kTable[i].finding) != i) return false;
  }
  return kTable.back().finding == Finding::nothing;
}
static_assert(isInOrder());

}  // namespace

Verdict::Verdict(const OffloadResult& result) {
  for (const Row& row : kTable) {
    found_[static_cast<std::size_t>(row.finding)] = row.isFound(result);
  }
  for (std::size_t i = 0; i < result.plan.destinations.size(); ++i) {
    isVerifiedOn_.push_back(result.verifiedCount(i) == result.files.size());
  }
}

Finding Verdict::worst() const {
  const auto first = std::find(found_.begin(), found_.end(), true);
  return static_cast<Finding>(first - found_.begin());
}

bool Verdict::isGood() const {
  return std::all_of(kTable.begin(), kTable.end(),
                     [this](const Row& row) { return row.isGood || !has(row.finding); });
}

bool Verdict::mayEject() const {
  return std::all_of(kTable.begin(), kTable.end(),
                     [this](const Row& row) { return row.mayEject || !has(row.finding); });
}

}  // namespace OffloadKit
