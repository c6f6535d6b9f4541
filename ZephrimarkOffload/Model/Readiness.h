#pragma once

#include "OffloadKit/Records/PlanRequest.h"
#include "ZephrimarkOffload/Model/DiskQueries.h"

#include <optional>
#include <string>

namespace ZephrimarkOffload {

/// The first reason why an offload cannot start, in words to act on and in the user's language;
/// none when it can. `count`: of the request's source, zeros until it is known. Looks at nothing
/// but its arguments; any thread.
std::optional<std::string> blocker(const OffloadKit::PlanRequest& request,
                                   const SourceCount& count);

}  // namespace ZephrimarkOffload
