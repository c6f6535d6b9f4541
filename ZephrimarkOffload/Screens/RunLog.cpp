#include "ZephrimarkOffload/Screens/RunLog.h"

#include "PlatformKit/ByteCount.h"
#include "PlatformKit/Unicode.h"

#include <algorithm>

#include <fmt/format.h>

namespace ZephrimarkOffload {
namespace {

using Phase = OffloadKit::OffloadProgress::Phase;

// A drive whose every file fails in a way of its own must not fill the memory.
constexpr std::size_t kMostLines = 200;

}  // namespace

RunLog::RunLog(std::vector<std::string> driveNames)
    : driveNames_(std::move(driveNames)), lastFailures_(driveNames_.size()) {}

bool RunLog::add(const OffloadKit::OffloadProgress& progress, PlatformKit::Date time) {
  const std::size_t before = lines_.size();
  if (!isScanned_ && progress.filesTotal > 0) {
    isScanned_ = true;
    lines_.push_back({time, fmt::format("Found {} files, {}", progress.filesTotal,
                                        PlatformKit::byteCountText(progress.bytesTotal))});
  }
  addProblems(progress, time);
  if (progress.phase != phase_) {
    phase_ = progress.phase;
    if (phase_ == Phase::imaging) {
      lines_.push_back({time, "All files are done, the card image is next"});
    } else if (phase_ == Phase::finishing) {
      const auto& drives = progress.drives;
      const bool isClean = std::all_of(drives.begin(), drives.end(),
                                       [](const auto& drive) { return drive.failed == 0; });
      lines_.push_back({time,
                        isClean ? "Everything is copied and compared"
                                : "All files are done, some are not verified",
                        !isClean});
    }
  }
  return lines_.size() > before;
}

void RunLog::addProblems(const OffloadKit::OffloadProgress& progress, PlatformKit::Date time) {
  for (std::size_t i = 0; i < lastFailures_.size() && i < progress.drives.size(); ++i) {
    const std::string& failure = progress.drives[i].lastFailure;
    // The same failure again is in the count that stands beside the drive.
    if (failure.empty() || failure == lastFailures_[i] || lines_.size() >= kMostLines) continue;
    lastFailures_[i] = failure;
    lines_.push_back({time, driveNames_[i] + ": " + PlatformKit::singleLineText(failure), true});
  }
}

}  // namespace ZephrimarkOffload
