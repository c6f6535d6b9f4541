#pragma once

#include <string>

namespace OffloadKit {

/// Results, progress and errors keep their sentences in English, since reports and machines read
/// them. This is such a sentence as people read it, in the user's language: of an outcome, a drive
/// that was given up, an item that could not be read, a device or a card that was not ejected. A
/// sentence that it does not know, as from a library, comes back as it is. Any thread.
std::string shownReason(const std::string& reason);

}  // namespace OffloadKit
