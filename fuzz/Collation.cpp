#include "TextKit/Collation.h"

#include "fuzz/Input.h"

#include <algorithm>

using TextKit::fileBrowserOrder;

/// Input: names, with zero bytes between.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto names = Fuzz::partsOf(Fuzz::textOf(data, size), 30);
  const auto order = fileBrowserOrder(names);
  auto positions = order;
  std::sort(positions.begin(), positions.end());
  Fuzz::require(positions.size() == names.size(), "the order has as many names");
  for (std::size_t i = 0; i < positions.size(); ++i) {
    Fuzz::require(positions[i] == i, "every name is there once");
  }
  const auto isBehind = [](std::string_view one, std::string_view other) {
    return fileBrowserOrder({one, other}).front() == 1;
  };
  for (std::size_t i = 1; i < order.size(); ++i) {
    const auto one = names[order[i - 1]];
    const auto next = names[order[i]];
    Fuzz::require(!isBehind(one, next), "two names compare alone as they do among others");
    Fuzz::require(isBehind(next, one) || order[i - 1] < order[i], "equal names keep their order");
  }
  return 0;
}
