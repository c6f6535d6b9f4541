#include "PlatformKit/AlignedBuffer.h"

#include "PlatformKit/Linux/LargePages.h"

#include <algorithm>
#include <new>

namespace PlatformKit {
namespace {

std::size_t roundedUp(std::size_t size, std::size_t multiple) {
  return (std::max<std::size_t>(size, 1) + multiple - 1) / multiple * multiple;
}

}  // namespace

AlignedBuffer::AlignedBuffer(std::size_t size) : size_(size) {
  const bool large = size >= kLargePage;
  const std::size_t alignment = large ? kLargePage : kAlignment;
  // aligned_alloc wants whole multiples of the alignment, and at least one.
  const std::size_t rounded = roundedUp(size, alignment);
  memory_.reset(static_cast<std::byte*>(std::aligned_alloc(alignment, rounded)));
  if (!memory_) throw std::bad_alloc();
  // A direct transfer names each page of its memory to the drive.
  if (large) preferLargePages(memory_.get(), rounded);
}

}  // namespace PlatformKit
