#pragma once

#include "OffloadKit/Proof/MHLEntry.h"
#include "OffloadKit/Proof/MHLParsers.h"
#include "PlatformKit/FileSystem.h"

#include <vector>

namespace OffloadKit::MHL {

inline constexpr const char* kChainName = "ascmhl_chain.xml";

/// The entries of the chain file in the folder `lists`, as far as they are complete; none when it
/// cannot be read. Memory is bounded: of a chain of more than 16 MiB only the beginning is used.
std::vector<ChainEntry> readChain(PlatformKit::Folder& folder, const PlatformKit::Path& lists);

/// For each row, whether a generation of the chain has its path. Generations are read as far as
/// they are complete, once each, from the folder `lists` only, at most 2 GiB in all; memory is
/// bounded by the rows.
std::vector<bool> knownRows(PlatformKit::Folder& folder, const PlatformKit::Path& lists,
                            const std::vector<ChainEntry>& chain, const std::vector<Entry>& rows);

}  // namespace OffloadKit::MHL
