#pragma once

#include <chrono>
#include <string>

namespace TextKit {

/// A wall-clock instant with the resolution of file dates.
using Date = std::chrono::sys_time<std::chrono::nanoseconds>;

/// The date in the machine's time zone, laid out by a strftime pattern in the "C" locale, such as
/// "%Y-%m-%d" or "%H%M". Any thread.
std::string localDateText(Date date, const char* pattern);

/// The date in UTC, laid out by a strftime pattern in the "C" locale. Any thread.
std::string utcDateText(Date date, const char* pattern);

/// The date in UTC with whole seconds as RFC 3339 has it, such as 2026-10-07T14:32:05Z. Any thread.
std::string internetDateText(Date date);

/// The date in the machine's time zone as RFC 3339 has it, with whole seconds or with milliseconds
/// and the zone's offset ("Z" when that is zero), such as 2026-10-07T14:32:05.123+02:00. Any
/// thread.
enum class Precision { seconds, milliseconds };
std::string localInternetDateText(Date date, Precision precision);

/// The date in the machine's time zone as people of the user's language write it in full, with a
/// short time, such as "October 7, 2026 at 2:32 PM". Any thread.
std::string longDateText(Date date);

}  // namespace TextKit
