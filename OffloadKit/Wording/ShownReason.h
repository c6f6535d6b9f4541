#pragma once

#include "OffloadKit/Records/Reason.h"

#include <string>

namespace OffloadKit {

/// A reason as people read it, in the user's language: its sentence, the reasons behind it and the
/// system's own texts. Names in it are bytes as they are. Any thread.
std::string shown(const Reason& reason);

}  // namespace OffloadKit
