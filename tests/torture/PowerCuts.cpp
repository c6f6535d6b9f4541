#include "tests/torture/Campaign.h"
#include "tests/torture/DiskModel.h"

#include <algorithm>

namespace Torture {
namespace {

class CutRun {
 public:
  CutRun(const Variant& variant, const Wrap& wrap) : bench_(variant), variant_(variant) {
    Recorder recorder(linux_, bench_.drives());
    result_ = wrap ? bench_.run(*wrap(recorder), 1) : bench_.run(recorder, 1);
    steps_ = recorder.steps();
  }

  [[nodiscard]] std::size_t steps() const { return steps_.size(); }

  // The power is cut before step `at`, or at the end of the run.
  Violations cut(std::size_t at, Names names, std::minstd_rand& random) {
    // What a stranger left in the cache is not safe before the run has flushed the volume.
    Snapshot flushed = bench_.drivesBefore();
    Snapshot cached;
    cached.insert(flushed.extract(Bench::copies(0) + "/" + Bench::kStrangersCopy));
    if (variant_.fresh) std::swap(flushed, cached);
    for (std::size_t drive = 0; drive < Bench::kDrives; ++drive) {
      const std::string root = "drive" + std::to_string(drive) + "/";
      cached.erase(root);
      flushed[root];
    }
    DiskModel model(flushed, cached, variant_.fat);
    for (std::size_t i = 0; i < at; ++i) model.apply(steps_[i]);
    // Nobody can keep FAT from losing what is just being named: one file of each drive at most.
    if (model.withoutSize() > Bench::kDrives) return {"names are given faster than flushed"};
    while (model.withoutSize() > 0 && at < steps_.size()) model.apply(steps_[at++]);
    restore(bench_.drives(), model.afterCut(names, random));

    const bool hasEnded = at == steps_.size();
    Violations found = bench_.violationsNow(hasEnded);
    if (hasEnded) {
      const Violations lost = bench_.lostOf(result_);
      found.insert(found.end(), lost.begin(), lost.end());
    }
    const Violations later = bench_.violationsOf(bench_.rerun(), hasEnded);
    found.insert(found.end(), later.begin(), later.end());
    return found;
  }

 private:
  PlatformKit::LinuxFileSystem linux_;
  const Bench bench_;
  const Variant variant_;
  OffloadKit::OffloadResult result_;
  std::vector<Step> steps_;
};

}  // namespace

Tally cutPower(const Variant& variant, std::size_t cuts, std::uint64_t seed, const Wrap& wrap) {
  const auto start = std::chrono::steady_clock::now();
  Tally tally;
  tally.name = std::string("power cut, ") + variant.name;
  CutRun run(variant, wrap);
  std::minstd_rand random(static_cast<std::minstd_rand::result_type>(seed));
  cuts = std::min(cuts, run.steps());
  for (std::size_t i = 0; i <= cuts; ++i) {
    const std::size_t at = i * run.steps() / cuts;
    for (const Names names : {Names::lost, Names::kept, Names::some}) {
      ++tally.faults;
      for (const std::string& violation : run.cut(at, names, random)) {
        tally.violations.push_back("cut before step " + std::to_string(at) + ": " + violation);
      }
    }
  }
  tally.took = std::chrono::steady_clock::now() - start;
  return tally;
}

}  // namespace Torture
