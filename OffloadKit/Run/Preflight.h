#pragma once

#include "OffloadKit/Records/OffloadPlan.h"
#include "OffloadKit/Records/SourceFile.h"
#include "PlatformKit/System.h"

#include <vector>

namespace OffloadKit {

/// Free space, in bytes, that a destination must keep beyond what it is to receive.
inline constexpr std::uint64_t kSpaceMargin = 16'777'216;

/// Checks every destination of the plan before anything is written: it is or will be a folder that
/// can be written to, it is not on the card, and it has room for those `files` that are not there
/// already (and for the card image that it is to receive) plus `kSpaceMargin`. Throws
/// OffloadError::destinationUnavailable, destinationOnSource or notEnoughSpace for the first
/// destination that fails. Any thread.
void preflight(PlatformKit::System system, const OffloadPlan& plan,
               const std::vector<SourceFile>& files);

}  // namespace OffloadKit
