#include "OffloadKit/Wording/Format.h"
#include "TextKit/ByteCount.h"
#include "TextKit/DateText.h"
#include "TextKit/Unicode.h"
#include "fuzz/Input.h"

#include <algorithm>
#include <cmath>
#include <string>

using namespace TextKit;

namespace {

double valueOf(const std::string& text) {
  const std::string unit = text.substr(text.find(' ') + 1);
  double value = unit == "KB" && text.starts_with("Zero") ? 0 : std::stod(text);
  constexpr std::string_view kUnits = "KMGTPE";
  if (unit.size() == 2) {
    for (std::size_t i = 0; i <= kUnits.find(unit.front()); ++i) value *= 1000;
  }
  return value;
}

void checkSize(std::uint64_t bytes) {
  const double value = valueOf(byteCountText(bytes));
  const auto exact = static_cast<double>(bytes);
  // A whole number of KB is rounded by up to a half, larger units to a twentieth and finer.
  const double most = bytes < 1'000'000 ? 500 : exact * 0.051;
  Fuzz::require(std::abs(value - exact) <= most, "a size is told as it is");
}

void checkDate(Date date) {
  Fuzz::require(internetDateText(date).size() == 20, "a date in UTC has its form");
  const std::string local = localInternetDateText(date, Precision::milliseconds);
  Fuzz::require(local.size() == 24 || local.size() == 29, "a local date has its form");
  Fuzz::require(local[4] == '-' && local[10] == 'T' && local[19] == '.', "its parts are in place");
  const std::string full = longDateText(date);
  Fuzz::require(!full.empty() && validUtf8(full) == full, "a date in full is text");
}

}  // namespace

/// Input: eight bytes, taken as a size, a date and a span of time.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::uint64_t number = Fuzz::numberOf(Fuzz::textOf(data, size));
  checkSize(number);
  // The farthest dates that files have here.
  constexpr std::int64_t kFarthest = 9'223'372'035'000'000'000;
  checkDate(Date(std::chrono::nanoseconds(
      std::clamp(static_cast<std::int64_t>(number), -kFarthest, kFarthest))));
  double seconds = 0;
  std::memcpy(&seconds, &number, sizeof seconds);
  const std::string span = OffloadKit::Format::duration(seconds);
  Fuzz::require(span.size() <= 16 && span.find('-') == std::string::npos, "a span is short");
  Fuzz::require(OffloadKit::Format::grouped(number).size() <= 26, "a number has its groups");
  return 0;
}
