#include "PlatformKit/ByteCount.h"

#include <array>

namespace PlatformKit {
namespace {

struct Unit {
  const char* name;
  std::uint64_t bytes;
  unsigned decimals;
};

constexpr std::array kUnits = {
    Unit{"KB", 1'000, 0},
    Unit{"MB", 1'000'000, 1},
    Unit{"GB", 1'000'000'000, 2},
    Unit{"TB", 1'000'000'000'000, 2},
    Unit{"PB", 1'000'000'000'000'000, 2},
    Unit{"EB", 1'000'000'000'000'000'000, 2},
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

}  // namespace

std::string byteCountText(std::uint64_t bytes) {
  if (bytes == 0) return "Zero KB";
  if (bytes == 1) return "1 byte";
  if (bytes < 1000) return std::to_string(bytes) + " bytes";
  for (std::size_t i = 0;; ++i) {
    const Unit& unit = kUnits[i];
    std::uint64_t step = unit.bytes;
    for (unsigned decimal = 0; decimal < unit.decimals; ++decimal) step /= 10;
    const std::uint64_t scaled = bytes / step + (bytes % step >= step - step / 2 ? 1 : 0);
    // Rounding may carry into the next unit: 999,999 bytes are "1 MB", never "1000 KB".
    const bool fits = scaled < unit.bytes / step * 1000;
    if (fits || i + 1 == kUnits.size()) return decimalText(scaled, unit.decimals) + " " + unit.name;
  }
}

}  // namespace PlatformKit
