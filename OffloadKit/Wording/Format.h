#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace OffloadKit::Format {

/// A span of time for people, rounded to whole seconds: "59 s", "1 min 0 s", "2 h 5 min". Negative
/// spans count as 0. In English, for records. Any thread.
std::string duration(double seconds);

/// The same in the user's language, for screens. Any thread.
std::string shownDuration(double seconds);

/// "245.3 MB/s", in the user's language. Any thread.
std::string speed(std::uint64_t bytesPerSecond);

/// A number with its digits in groups of three, in the user's language: "2,004". Any thread.
std::string grouped(std::size_t number);

}  // namespace OffloadKit::Format
