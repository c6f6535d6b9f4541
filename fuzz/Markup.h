#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Fuzz {

/// One element of a document.
struct Element {
  std::string name;
  std::string kind;  ///< its attribute "class"
  std::string text;  ///< directly in it, as written

  friend bool operator==(const Element&, const Element&) = default;
};

/// All elements of an XML document in the order of their starts; none when it has a fault.
std::optional<std::vector<Element>> elementsOf(std::string_view document);

}  // namespace Fuzz
