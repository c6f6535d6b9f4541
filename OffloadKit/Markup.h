#pragma once

#include <string>
#include <string_view>

namespace OffloadKit {

/// The text with "&", "<", ">" and the straight double quote as character entities, fit for XML and
/// HTML; nothing else is changed. Any thread.
std::string escapeMarkup(std::string_view text);

}  // namespace OffloadKit
