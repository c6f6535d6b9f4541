#include "PlatformKit/Linux/LargePages.h"

#include <sys/mman.h>

namespace PlatformKit {

void preferLargePages(void* memory, std::size_t length) {
  static_cast<void>(madvise(memory, length, MADV_HUGEPAGE));
}

}  // namespace PlatformKit
