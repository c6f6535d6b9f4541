#pragma once

#include <string>

namespace PlatformKit {

/// The system's own text for an error number, such as "Input/output error"; English whatever the
/// user's language, since reports keep it. Any thread.
std::string systemText(int error);

}  // namespace PlatformKit
