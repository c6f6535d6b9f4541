#pragma once

#include "ZephrimarkOffload/Demo/Endings.h"
#include "ZephrimarkOffload/Demo/ScriptedRunner.h"

#include <chrono>
#include <functional>

namespace ZephrimarkOffload::Demo {

using Ending =
    std::function<OffloadKit::OffloadResult(const OffloadKit::OffloadPlan&, const Files&)>;

/// Reports from the first to the last file in about this time, then ends.
Script wholeRun(std::chrono::milliseconds time, Ending ending);

/// Reports this share of the work, with a failed file on the last drive, and stays there until it
/// is stopped.
Script heldAt(double fraction);

/// Ends at once.
Script endedAs(Ending ending);

/// Cannot start for this reason.
Script refused(OffloadKit::OffloadError error);

}  // namespace ZephrimarkOffload::Demo
