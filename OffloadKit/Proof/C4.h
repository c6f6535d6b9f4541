#pragma once

#include <string>
#include <string_view>

namespace OffloadKit {

/// The C4 identifier of the bytes (SMPTE ST 2114): "c4" and their SHA-512 digest in base 58, filled
/// up with "1" to 88 digits; always 90 characters. Any thread. Throws std::runtime_error when the
/// digest library fails.
std::string c4ID(std::string_view data);

}  // namespace OffloadKit
