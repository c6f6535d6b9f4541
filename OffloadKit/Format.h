#pragma once

#include <cstddef>
#include <string>

namespace OffloadKit::Format {

/// A span of time for people, rounded to whole seconds: "59 s", "1 min 0 s", "2 h 5 min". Negative
/// spans count as 0. Any thread.
std::string duration(double seconds);

/// A number with its digits in groups of three: "2,004". Any thread.
std::string grouped(std::size_t number);

/// "1 file", "2,004 files": `noun` with a plural s unless the number is 1. Any thread.
std::string counted(std::size_t number, const char* noun);

}  // namespace OffloadKit::Format
