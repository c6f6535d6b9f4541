#pragma once

#include "OffloadKit/Records/Reason.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace OffloadKit {

/// How far a run is.
struct OffloadProgress {
  enum class Phase { scanning, copying, verifying, imaging, finishing };

  Phase phase = Phase::scanning;
  std::size_t filesDone = 0;     ///< files finished before the current one
  std::size_t filesTotal = 0;    ///< files found by the scan; 0 while scanning
  std::uint64_t bytesTotal = 0;  ///< sum of all file sizes, without a card image; 0 while scanning
  double fraction = 0;           ///< share of the whole run's work that is done, 0 to 1
  std::string currentFile;       ///< relative path; the image's name while imaging; else empty
  double bytesPerSecond = 0;     ///< source bytes per second, averaged since the run began

  /// What came of the files so far on one destination.
  struct Drive {
    std::size_t verified = 0;
    std::size_t failed = 0;
    std::optional<Reason> lastFailure;  ///< none without failures
  };
  std::vector<Drive> drives;  ///< in the plan's order; empty while scanning
};

/// Receives the progress of a run, on the run's thread. Must be cheap, must not throw.
using ProgressCallback = std::function<void(const OffloadProgress&)>;

}  // namespace OffloadKit
