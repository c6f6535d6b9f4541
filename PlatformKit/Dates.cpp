#include "PlatformKit/Dates.h"

#include <array>
#include <ctime>

namespace PlatformKit {
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

Date SystemClock::now() const {
  return std::chrono::time_point_cast<std::chrono::nanoseconds>(std::chrono::system_clock::now());
}

}  // namespace PlatformKit
