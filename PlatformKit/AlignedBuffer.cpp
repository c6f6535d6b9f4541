#include "PlatformKit/AlignedBuffer.h"

#include <new>

namespace PlatformKit {

AlignedBuffer::AlignedBuffer(std::size_t size) : size_(size) {
  // aligned_alloc wants whole multiples of the alignment, and at least one.
  const std::size_t rounded = (size / kAlignment + 1) * kAlignment;
  memory_.reset(static_cast<std::byte*>(std::aligned_alloc(kAlignment, rounded)));
  if (!memory_) throw std::bad_alloc();
}

}  // namespace PlatformKit
