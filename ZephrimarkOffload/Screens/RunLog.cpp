#include "ZephrimarkOffload/Screens/RunLog.h"

#include "OffloadKit/Wording/ShownReason.h"
#include "TextKit/ByteCount.h"
#include "TextKit/Translation.h"
#include "TextKit/Unicode.h"

#include <algorithm>

namespace ZephrimarkOffload {
namespace {

using TextKit::filled;
using TextKit::translate;
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
    const std::size_t files = progress.filesTotal;
    lines_.push_back(
        {time, filled(translate("Progress", "Found %1 files, %2", "Found %1 files, %2", files),
                      {std::to_string(files), TextKit::shownByteCount(progress.bytesTotal)})});
  }
  addProblems(progress, time);
  if (progress.phase != phase_) {
    phase_ = progress.phase;
    if (phase_ == Phase::imaging) {
      lines_.push_back({time, translate("Progress", "All files are done, the card image is next")});
    } else if (phase_ == Phase::finishing) {
      const auto& drives = progress.drives;
      const bool isClean = std::all_of(drives.begin(), drives.end(),
                                       [](const auto& drive) { return drive.failed == 0; });
      lines_.push_back({time,
                        isClean
                            ? translate("Progress", "Everything is copied and compared")
                            : translate("Progress", "All files are done, some are not verified"),
                        !isClean});
    }
  }
  return lines_.size() > before;
}

void RunLog::addProblems(const OffloadKit::OffloadProgress& progress, PlatformKit::Date time) {
  for (std::size_t i = 0; i < lastFailures_.size() && i < progress.drives.size(); ++i) {
    const auto& failure = progress.drives[i].lastFailure;
    // The same failure again is in the count that stands beside the drive.
    if (!failure || failure == lastFailures_[i] || lines_.size() >= kMostLines) continue;
    lastFailures_[i] = failure;
    lines_.push_back(
        {time, driveNames_[i] + ": " + TextKit::singleLineText(OffloadKit::shown(*failure)), true});
  }
}

}  // namespace ZephrimarkOffload
