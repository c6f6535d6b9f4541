#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace TextKit {

/// The words of a text in lower case, in order: its runs of letters, marks and digits by Unicode,
/// in lower case independent of the locale. Takes any bytes; one that is not UTF-8 separates words.
/// Never fails for want of form. Any thread.
std::vector<std::string> lowerCaseWords(std::string_view text);

}  // namespace TextKit
