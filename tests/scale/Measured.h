#pragma once

#include "PlatformKit/FileSystem.h"

#include <string>
#include <vector>

namespace Scale {

/// What a program took and said.
struct Measured {
  int status = -1;  ///< its exit status; -1 when a signal ended it
  double seconds = 0;
  double cpuSeconds = 0;  ///< of all its threads, with what the kernel did for it
  double peakMiB = 0;     ///< the most memory it or, before, this process ever had at once
  std::string output;
  std::string error;
};

/// Runs the offload of a card to the destinations, with one JSON object as its output. Its streams
/// are kept in files in `folder`. Throws std::system_error.
Measured offload(const PlatformKit::Path& card, const std::vector<PlatformKit::Path>& destinations,
                 const PlatformKit::Path& folder);

}  // namespace Scale
