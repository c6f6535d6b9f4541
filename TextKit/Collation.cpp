#include "TextKit/Collation.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <numeric>
#include <stdexcept>

#include <unicode/coll.h>
#include <unicode/unistr.h>

namespace TextKit {
namespace {

std::unique_ptr<icu::Collator> makeCollator() {
  // The "C" locale would compare bytes, which no file browser does.
  icu::Locale locale = icu::Locale::getDefault();
  if (std::string_view(locale.getVariant()) == "POSIX") locale = icu::Locale::getRoot();
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(locale, status));
  if (U_SUCCESS(status)) collator->setStrength(icu::Collator::SECONDARY);
  if (U_SUCCESS(status)) collator->setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, status);
  if (U_FAILURE(status)) {
    throw std::runtime_error(std::string("no collation for names: ") + u_errorName(status));
  }
  return collator;
}

std::string sortKey(const icu::Collator& collator, std::string_view name) {
  const auto text =
      icu::UnicodeString::fromUTF8({name.data(), static_cast<std::int32_t>(name.size())});
  std::string key(name.size() * 2 + 16, '\0');
  for (;;) {
    const std::int32_t length = collator.getSortKey(
        text, reinterpret_cast<std::uint8_t*>(key.data()), static_cast<std::int32_t>(key.size()));
    const bool fits = static_cast<std::size_t>(length) <= key.size();
    key.resize(static_cast<std::size_t>(length));
    if (fits) return key;
  }
}

}  // namespace

std::vector<std::size_t> fileBrowserOrder(const std::vector<std::string_view>& names) {
  const auto collator = makeCollator();
  std::vector<std::string> keys;
  keys.reserve(names.size());
  for (const std::string_view name : names) keys.push_back(sortKey(*collator, name));
  std::vector<std::size_t> order(names.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(),
                   [&keys](std::size_t a, std::size_t b) { return keys[a] < keys[b]; });
  return order;
}

}  // namespace TextKit
