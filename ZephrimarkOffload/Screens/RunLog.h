#pragma once

#include "OffloadKit/Records/OffloadProgress.h"
#include "PlatformKit/Dates.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace ZephrimarkOffload {

/// What happened so far in an offload, told from its reports: one line for each turn of events,
/// none for each file. The same failure of a drive again is not told anew. A value; any thread, one
/// at a time.
class RunLog {
 public:
  /// `driveNames`: of the destinations, in their order.
  explicit RunLog(std::vector<std::string> driveNames);

  /// Takes in the next report, which came at `time`; answers whether there are new lines.
  bool add(const OffloadKit::OffloadProgress& progress, PlatformKit::Date time);

  /// One turn of events: when its report came, what it was in the user's language on one line, and
  /// whether it is something to worry about.
  struct Line {
    PlatformKit::Date time;
    std::string text;
    bool isProblem = false;
  };
  /// In the order of the reports; two hundred problems at most, however many there are. Valid until
  /// the next `add`.
  [[nodiscard]] const std::vector<Line>& lines() const { return lines_; }

 private:
  void addProblems(const OffloadKit::OffloadProgress& progress, PlatformKit::Date time);

  std::vector<std::string> driveNames_;
  std::vector<std::optional<OffloadKit::Reason>> lastFailures_;
  std::vector<Line> lines_;
  bool isScanned_ = false;
  OffloadKit::OffloadProgress::Phase phase_ = OffloadKit::OffloadProgress::Phase::scanning;
};

}  // namespace ZephrimarkOffload
