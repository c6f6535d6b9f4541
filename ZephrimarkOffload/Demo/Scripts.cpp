#include "ZephrimarkOffload/Demo/Scripts.h"

#include <algorithm>
#include <cmath>

namespace ZephrimarkOffload::Demo {
namespace {

using OffloadKit::OffloadProgress;
using OffloadKit::OffloadResult;
using Phase = OffloadProgress::Phase;

constexpr double kBytesPerSecond = 182'700'000;
constexpr std::chrono::milliseconds kStep{80};
// Of the work that is left when all files are done.
constexpr double kFilesShare = 0.97;

OffloadProgress progressAt(double fraction, const ScriptedRun& run) {
  const double share = std::min(fraction / kFilesShare, 1.0);
  OffloadProgress progress;
  progress.phase = share < 1 ? Phase::copying : Phase::finishing;
  progress.filesTotal = run.files.size();
  progress.filesDone = static_cast<std::size_t>(share * static_cast<double>(run.files.size()));
  for (const auto& file : run.files) progress.bytesTotal += file.size;
  progress.fraction = fraction;
  if (share < 1) progress.currentFile = run.files[progress.filesDone].relativePath;
  // Cards never deliver quite evenly.
  progress.bytesPerSecond = kBytesPerSecond * (1 + 0.03 * std::sin(60 * fraction));
  progress.drives.resize(run.plan.destinations.size());
  for (auto& drive : progress.drives) drive.verified = progress.filesDone;
  return progress;
}

}  // namespace

Script wholeRun(std::chrono::milliseconds time, Ending ending) {
  return [time, ending](const ScriptedRun& run) {
    run.report({});
    run.wait(std::chrono::milliseconds(900));
    const auto steps = time / kStep;
    for (int step = 0; step < steps; ++step) {
      run.report(progressAt(static_cast<double>(step) / static_cast<double>(steps), run));
      run.wait(kStep);
    }
    OffloadResult result = ending(run.plan, run.files);
    result.finished = result.started + time;
    return result;
  };
}

Script heldAt(double fraction) {
  return [fraction](const ScriptedRun& run) -> OffloadResult {
    OffloadProgress progress = progressAt(fraction, run);
    auto& drive = progress.drives.back();
    --drive.verified;
    drive.failed = 1;
    drive.lastFailure = OffloadKit::Reason(OffloadKit::Reason::Kind::copyDiffers);
    run.report(progress);
    while (true) run.wait(std::chrono::hours(1));
  };
}

Script endedAs(Ending ending) {
  return [ending](const ScriptedRun& run) { return ending(run.plan, run.files); };
}

Script refused(OffloadKit::OffloadError error) {
  return [error](const ScriptedRun&) -> OffloadResult { throw error; };
}

}  // namespace ZephrimarkOffload::Demo
