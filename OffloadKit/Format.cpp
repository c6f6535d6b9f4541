#include "OffloadKit/Format.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

namespace OffloadKit::Format {

std::string duration(double seconds) {
  // Longer than any offload; keeps the conversion to whole numbers defined.
  constexpr double kLongest = 1e9;
  const long whole = std::lround(std::clamp(std::isnan(seconds) ? 0.0 : seconds, 0.0, kLongest));
  if (whole > 3599) return fmt::format("{} h {} min", whole / 3600, whole / 60 % 60);
  if (whole > 59) return fmt::format("{} min {} s", whole / 60, whole % 60);
  return fmt::format("{} s", whole);
}

std::string grouped(std::size_t number) {
  std::string digits = std::to_string(number);
  for (std::size_t end = digits.size(); end > 3;) digits.insert(end -= 3, ",");
  return digits;
}

std::string counted(std::size_t number, const char* noun) {
  return fmt::format("{} {}{}", grouped(number), noun, number == 1 ? "" : "s");
}

}  // namespace OffloadKit::Format
