#include "OffloadKit/Wording/Format.h"

#include "TextKit/ByteCount.h"
#include "TextKit/Translation.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace OffloadKit::Format {
namespace {

using TextKit::filled;
using TextKit::translatable;
using TextKit::translate;

/// The two numbers of a span of time and the text that they belong into.
struct Span {
  long first;
  long second;
  const char* text;
};

Span spanOf(double seconds) {
  // Longer than any offload; keeps the conversion to whole numbers defined.
  constexpr double kLongest = 1e9;
  const long whole = std::lround(std::clamp(std::isnan(seconds) ? 0.0 : seconds, 0.0, kLongest));
  if (whole > 3599) return {whole / 3600, whole / 60 % 60, translatable("Numbers", "%1 h %2 min")};
  if (whole > 59) return {whole / 60, whole % 60, translatable("Numbers", "%1 min %2 s")};
  return {whole, 0, translatable("Numbers", "%1 s")};
}

std::string durationText(const Span& span, std::string_view text) {
  return filled(text, {std::to_string(span.first), std::to_string(span.second)});
}

}  // namespace

std::string duration(double seconds) {
  const Span span = spanOf(seconds);
  return durationText(span, span.text);
}

std::string shownDuration(double seconds) {
  const Span span = spanOf(seconds);
  return durationText(span, translate("Numbers", span.text));
}

std::string speed(std::uint64_t bytesPerSecond) {
  return filled(translate("Numbers", "%1/s"), {TextKit::shownByteCount(bytesPerSecond)});
}

std::string grouped(std::size_t number) {
  std::string digits = std::to_string(number);
  if (digits.size() <= 3) return digits;
  // Between groups of three digits.
  const std::string separator = translate("Numbers", ",");
  for (std::size_t end = digits.size(); end > 3;) digits.insert(end -= 3, separator);
  return digits;
}

}  // namespace OffloadKit::Format
