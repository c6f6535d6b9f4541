#pragma once

#include "CommandLine/OffloadArguments.h"
#include "Composition/Machine.h"

namespace CommandLine {

/// Runs "zephrimark offload" and answers the program's exit status (see ExitStatus). Call it on the
/// main thread before any other thread exists: it watches for Ctrl-C.
int runOffload(const OffloadArguments& arguments, const Composition::Machine& machine);

}  // namespace CommandLine
