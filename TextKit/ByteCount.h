#pragma once

#include <cstdint>
#include <string>

namespace TextKit {

/// A number of bytes as people read file sizes, in decimal units (1 KB = 1000 bytes): "Zero KB",
/// "1 byte", "512 bytes", "850 KB", "12.3 MB", "64.2 GB". KB have no decimals, MB up to one, larger
/// units up to two; trailing zeros are left out. In English, for records. Any thread.
std::string byteCountText(std::uint64_t bytes);

/// The same in the user's language, for screens: "12,3 MB".
std::string shownByteCount(std::uint64_t bytes);

}  // namespace TextKit
