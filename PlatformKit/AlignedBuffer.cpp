#include "PlatformKit/AlignedBuffer.h"

#include <algorithm>
#include <new>

#include <sys/mman.h>

namespace PlatformKit {
namespace {

constexpr std::size_t kHugePage = std::size_t{2} << 20;

std::size_t roundedUp(std::size_t size, std::size_t multiple) {
  return (std::max<std::size_t>(size, 1) + multiple - 1) / multiple * multiple;
}

}  // namespace

AlignedBuffer::AlignedBuffer(std::size_t size) : size_(size) {
  const bool huge = size >= kHugePage;
  const std::size_t alignment = huge ? kHugePage : kAlignment;
  // aligned_alloc wants whole multiples of the alignment, and at least one.
  const std::size_t rounded = roundedUp(size, alignment);
  memory_.reset(static_cast<std::byte*>(std::aligned_alloc(alignment, rounded)));
  if (!memory_) throw std::bad_alloc();
  // A direct transfer names each page of its memory to the drive. Ignored on purpose where the
  // system has only small ones.
  if (huge) static_cast<void>(madvise(memory_.get(), rounded, MADV_HUGEPAGE));
}

}  // namespace PlatformKit
