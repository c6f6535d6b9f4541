#include "OffloadKit/Proof/Markup.h"

namespace OffloadKit {

std::string escapeMarkup(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\r':
        escaped += "&#13;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

}  // namespace OffloadKit
