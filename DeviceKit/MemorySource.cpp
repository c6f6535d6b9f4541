#include "DeviceKit/MemorySource.h"

#include <algorithm>

namespace DeviceKit {

std::string MemorySource::descriptionForReport() const {
  return "memory(" + std::to_string(data_.size()) + " bytes)";
}

std::size_t MemorySource::read(std::uint64_t offset, std::span<std::byte> buffer) {
  if (offset >= data_.size()) return 0;
  const std::size_t count = std::min<std::size_t>(buffer.size(), data_.size() - offset);
  std::copy_n(data_.begin() + static_cast<std::ptrdiff_t>(offset), count, buffer.begin());
  return count;
}

}  // namespace DeviceKit
