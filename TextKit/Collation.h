#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace TextKit {

/// The order in which a file browser shows these names: by the user's language, case-insensitive,
/// runs of digits compared as numbers (the Unicode Collation Algorithm of UTS #10, secondary
/// strength, numeric). Answers the positions of `names` in that order; names that compare equal
/// keep their order. Names are UTF-8; invalid bytes count as U+FFFD. Throws std::runtime_error when
/// the collation data is missing. Any thread.
std::vector<std::size_t> fileBrowserOrder(const std::vector<std::string_view>& names);

}  // namespace TextKit
