#pragma once

#include "OffloadKit/Records/Verdict.h"

#include <nlohmann/json_fwd.hpp>

namespace CommandLine {

/// The outcome of a run as the last JSON object of its output; docs/command-line.md has its
/// members.
nlohmann::json resultJson(const OffloadKit::OffloadResult& result,
                          const OffloadKit::Verdict& verdict);

}  // namespace CommandLine
