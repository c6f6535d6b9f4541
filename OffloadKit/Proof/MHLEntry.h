#pragma once

#include "PlatformKit/Dates.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace OffloadKit::MHL {

/// A line of a generation beside those of the copied files.
struct Entry {
  std::string path;  ///< relative to the offload folder, components separated by "/"
  std::uint64_t size = 0;
  PlatformKit::Date modified{};
  std::string hash;  ///< lowercase hexadecimal, by the algorithm of the generation
};

/// Written into every generation; rows are not filtered by them.
inline constexpr std::array<std::string_view, 3> ignorePatterns = {".DS_Store", "ascmhl",
                                                                   "ascmhl/"};

/// The path as a hash list carries it. XML cannot hold control characters and bytes that are not
/// UTF-8, and readers turn a carriage return into a line feed; in a path with any of these, their
/// bytes and every "%" are written as "%" and two hexadecimal digits. Other paths stay as they are.
/// Any thread.
std::string carriedPath(std::string_view path);

}  // namespace OffloadKit::MHL
