#pragma once

#include "OffloadKit/Records/OffloadProgress.h"

#include <cstddef>
#include <optional>
#include <string>

namespace OffloadKit::ProgressTexts {

/// What the last report says to people, in the window as on the terminal; none before the first. In
/// the user's language, valid UTF-8, one line each. Any thread.
using Progress = std::optional<OffloadProgress>;

/// What the offload is doing, `destinations` drives being written.
std::string phase(const Progress& progress, std::size_t destinations);

/// "412 of 1204"; an en dash before the first report.
std::string files(const Progress& progress);

/// "245.3 MB/s", or an en dash while it is not known.
std::string speed(const Progress& progress);

/// "About 3 min 12 s", at the average pace so far, `elapsed` seconds after the start.
std::string remaining(const Progress& progress, double elapsed);

/// What came of the files so far on a drive: "412 verified", "3 not verified: The drive is full".
std::string drive(const OffloadProgress::Drive& drive);

}  // namespace OffloadKit::ProgressTexts
