#pragma once

#include "OffloadKit/Records/OffloadPlan.h"
#include "OffloadKit/Records/OffloadProgress.h"
#include "PlatformKit/Dates.h"

#include <memory>

namespace CommandLine {

/// Shows how far a run is. Called for every progress report, on the run's thread; shows a few of
/// them a second.
class ProgressDisplay {
 public:
  virtual ~ProgressDisplay() = default;
  virtual void show(const OffloadKit::OffloadProgress& progress) = 0;
  /// Clears away what should not stay on the screen.
  virtual void finish() = 0;
};

/// Nothing is shown.
std::unique_ptr<ProgressDisplay> makeSilentDisplay();

/// One line on standard error that is redrawn, for a terminal. `clock` outlives the display.
std::unique_ptr<ProgressDisplay> makeTerminalDisplay(const PlatformKit::Clock& clock);

/// A plain line on standard error now and then, for logs. `clock` outlives the display.
std::unique_ptr<ProgressDisplay> makeLogDisplay(const OffloadKit::OffloadPlan& plan,
                                                const PlatformKit::Clock& clock);

/// One JSON object per line on standard output. `clock` outlives the display.
std::unique_ptr<ProgressDisplay> makeJsonDisplay(const PlatformKit::Clock& clock);

}  // namespace CommandLine
