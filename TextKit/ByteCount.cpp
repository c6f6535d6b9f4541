#include "TextKit/ByteCount.h"

#include "TextKit/Translation.h"

#include <array>

namespace TextKit {
namespace {

struct Unit {
  const char* text;
  std::uint64_t bytes;
  unsigned decimals;
};

constexpr std::array kUnits = {
    Unit{translatable("Numbers", "%1 KB"), 1'000, 0},
    Unit{translatable("Numbers", "%1 MB"), 1'000'000, 1},
    Unit{translatable("Numbers", "%1 GB"), 1'000'000'000, 2},
    Unit{translatable("Numbers", "%1 TB"), 1'000'000'000'000, 2},
    Unit{translatable("Numbers", "%1 PB"), 1'000'000'000'000'000, 2},
    Unit{translatable("Numbers", "%1 EB"), 1'000'000'000'000'000'000, 2},
};

/// A number in the largest unit that it reaches.
struct Amount {
  std::string digits;  ///< with a decimal point
  const char* text;    ///< of the unit
};

std::string decimalText(std::uint64_t scaled, unsigned decimals) {
  std::string digits = std::to_string(scaled);
  if (decimals == 0) return digits;
  if (digits.size() <= decimals) digits.insert(0, decimals + 1 - digits.size(), '0');
  digits.insert(digits.size() - decimals, ".");
  digits.erase(digits.find_last_not_of('0') + 1);
  if (digits.back() == '.') digits.pop_back();
  return digits;
}

// Of 1000 bytes and more.
Amount amountOf(std::uint64_t bytes) {
  for (std::size_t i = 0;; ++i) {
    const Unit& unit = kUnits[i];
    std::uint64_t step = unit.bytes;
    for (unsigned decimal = 0; decimal < unit.decimals; ++decimal) step /= 10;
    const std::uint64_t scaled = bytes / step + (bytes % step >= step - step / 2 ? 1 : 0);
    // Rounding may carry into the next unit: 999,999 bytes are "1 MB", never "1000 KB".
    const bool fits = scaled < unit.bytes / step * 1000;
    if (fits || i + 1 == kUnits.size()) return {decimalText(scaled, unit.decimals), unit.text};
  }
}

}  // namespace

std::string byteCountText(std::uint64_t bytes) {
  if (bytes == 0) return "Zero KB";
  if (bytes == 1) return "1 byte";
  if (bytes < 1000) return std::to_string(bytes) + " bytes";
  const Amount amount = amountOf(bytes);
  return filled(amount.text, {amount.digits});
}

std::string shownByteCount(std::uint64_t bytes) {
  if (bytes == 0) return translate("Numbers", "Zero KB");
  if (bytes < 1000) {
    return filled(translate("Numbers", "%1 bytes", "%1 byte", bytes), {std::to_string(bytes)});
  }
  Amount amount = amountOf(bytes);
  const std::size_t point = amount.digits.find('.');
  // The decimal point.
  if (point != std::string::npos) amount.digits.replace(point, 1, translate("Numbers", "."));
  return filled(translate("Numbers", amount.text), {amount.digits});
}

}  // namespace TextKit
