#pragma once

#include <string>

namespace PlatformKit {

/// The machine's network host name; "localhost" when the system tells none. Any thread.
std::string hostName();

}  // namespace PlatformKit
