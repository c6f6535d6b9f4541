#pragma once

#include <cstddef>

namespace PlatformKit {

/// Bytes of a page that the system may use for memory that asked for it.
inline constexpr std::size_t kLargePage = std::size_t{2} << 20;

/// Asks the system to use large pages for this memory (bytes), which starts on the boundary of one.
/// Without them everything works as well, only slower.
void preferLargePages(void* memory, std::size_t length);

}  // namespace PlatformKit
