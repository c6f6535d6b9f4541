#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace HashKit {

/// Returns two lowercase hexadecimal digits for each of `bytes`, in their order, with nothing
/// between them. Safe from any thread.
[[nodiscard]] std::string lowercaseHexadecimal(std::span<const std::byte> bytes);

}  // namespace HashKit
