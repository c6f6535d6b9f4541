#pragma once

#include <string>
#include <string_view>

namespace OffloadKit {

/// The text with "&", "<", ">", the straight double quote and the carriage return, which readers
/// would turn into a line feed, as character entities, fit for XML and HTML; nothing else is
/// changed. Any thread.
std::string escapeMarkup(std::string_view text);

}  // namespace OffloadKit
