#pragma once

#include "OffloadKit/Proof/MHLParsers.h"

#include <algorithm>
#include <string_view>

namespace Fuzz {

/// Feeds the text in pieces of that many bytes. Answers whether it was without fault to its end.
inline bool feed(OffloadKit::MHL::XMLReader& reader, std::string_view text, std::size_t piece) {
  for (;;) {
    const std::string_view next = text.substr(0, piece);
    text.remove_prefix(next.size());
    if (!reader.feed(next, text.empty())) return false;
    if (text.empty()) return true;
  }
}

}  // namespace Fuzz
