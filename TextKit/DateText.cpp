#include "TextKit/DateText.h"

#include <array>
#include <ctime>
#include <memory>

#include <unicode/datefmt.h>
#include <unicode/unistr.h>

namespace TextKit {
namespace {

std::time_t wholeSeconds(Date date) {
  return std::chrono::system_clock::to_time_t(std::chrono::floor<std::chrono::seconds>(date));
}

std::string laidOut(const std::tm& parts, const char* pattern) {
  std::array<char, 128> text{};
  return {text.data(), std::strftime(text.data(), text.size(), pattern, &parts)};
}

}  // namespace

std::string localDateText(Date date, const char* pattern) {
  const std::time_t seconds = wholeSeconds(date);
  std::tm parts{};
  localtime_r(&seconds, &parts);
  return laidOut(parts, pattern);
}

std::string utcDateText(Date date, const char* pattern) {
  const std::time_t seconds = wholeSeconds(date);
  std::tm parts{};
  gmtime_r(&seconds, &parts);
  return laidOut(parts, pattern);
}

std::string internetDateText(Date date) {
  return utcDateText(date, "%Y-%m-%dT%H:%M:%SZ");
}

std::string localInternetDateText(Date date, Precision precision) {
  const std::time_t seconds = wholeSeconds(date);
  std::tm parts{};
  localtime_r(&seconds, &parts);
  std::string text = laidOut(parts, "%Y-%m-%dT%H:%M:%S");
  if (precision == Precision::milliseconds) {
    const auto fraction = date - std::chrono::floor<std::chrono::seconds>(date);
    const auto whole = std::chrono::duration_cast<std::chrono::milliseconds>(fraction).count();
    // The leading 1 keeps the zeros.
    text += "." + std::to_string(1000 + whole).substr(1);
  }
  if (parts.tm_gmtoff == 0) return text + "Z";
  std::string zone = laidOut(parts, "%z");
  return text + zone.insert(3, ":");
}

std::string longDateText(Date date) {
  const std::unique_ptr<icu::DateFormat> format(
      icu::DateFormat::createDateTimeInstance(icu::DateFormat::kLong, icu::DateFormat::kShort));
  // Without locale data a date is still better than none.
  if (!format) return localDateText(date, "%Y-%m-%d %H:%M");
  icu::UnicodeString text;
  format->format(std::chrono::duration<double, std::milli>(date.time_since_epoch()).count(), text);
  std::string utf8;
  text.toUTF8String(utf8);
  return utf8;
}

}  // namespace TextKit
