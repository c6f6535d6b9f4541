#pragma once

#include <string_view>

namespace OffloadKit {

/// The product's short version, such as "1.0.0", as it appears in hash lists.
std::string_view productVersion();

}  // namespace OffloadKit
