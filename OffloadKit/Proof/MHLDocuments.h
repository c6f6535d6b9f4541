#pragma once

#include "HashKit/HashAlgorithm.h"
#include "OffloadKit/Proof/MHLEntry.h"
#include "OffloadKit/Proof/MHLParsers.h"

#include <string>
#include <vector>

namespace OffloadKit::MHL {

/// The text of one generation. `known`: per row, whether an earlier generation has its path. Any
/// thread.
std::string generationDocument(const std::vector<Entry>& rows, const std::vector<bool>& known,
                               HashKit::HashAlgorithm algorithm, PlatformKit::Date now);

/// The text of a chain file with these entries. Any thread.
std::string chainDocument(const std::vector<ChainEntry>& chain);

}  // namespace OffloadKit::MHL
