#pragma once

#include <cstddef>

namespace PlatformKit {

/// How many files this process may have open at once (RLIMIT_NOFILE). Any thread.
std::size_t openFilesLimit();

/// Raises that limit to 8,192, or as far towards it as the system lets this user. For the start of
/// a program: the limit is the whole process's, and programs that it starts inherit it.
void raiseOpenFilesLimit();

}  // namespace PlatformKit
