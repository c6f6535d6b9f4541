#pragma once

#include <nlohmann/json_fwd.hpp>

#include "OffloadKit/OffloadResult.h"

namespace CommandLine {

/// The outcome of a run as the last JSON object of its output; docs/command-line.md has its members.
nlohmann::json resultJson(const OffloadKit::OffloadResult& result);

}  // namespace CommandLine
