#pragma once

#include "OffloadKit/Copying/HeldDestination.h"
#include "OffloadKit/Copying/LaneNames.h"

#include <deque>

namespace OffloadKit {

/// One destination of a run, from its start to its end: the folder that is held, and the names that
/// are given there. Threads as the two have them.
class Lane : public HeldDestination {
 public:
  /// As HeldDestination.
  Lane(PlatformKit::System system, const OffloadPlan& plan, std::size_t index)
      : HeldDestination(system, plan, index), names_(system, *this) {}

  [[nodiscard]] LaneNames& names() { return names_; }

 private:
  LaneNames names_;
};

/// The lanes of a run, in the plan's order.
using Lanes = std::deque<Lane>;

}  // namespace OffloadKit
