#pragma once

#include "HashKit/HashAlgorithm.h"
#include "OffloadKit/Proof/MHLEntry.h"
#include "OffloadKit/Records/OffloadResult.h"
#include "PlatformKit/FileSystem.h"

#include <string>
#include <vector>

/// Hash lists in the ASC MHL v2.0 format (the Media Hash List of the ASC, schema urn:ASC:MHL:v2.0):
/// in the folder "ascmhl" of an offload folder lie one generation per run and the chain file that
/// lists them with their C4 identifiers. docs/formats.md has the layout.
namespace OffloadKit::MHL {

/// Writes the next generation of an offload folder: every file verified on the destination, the
/// `extra` entries, and the reports that lie in the folder, each marked "verified" where an earlier
/// generation that can be read has its path, else "original". Then adds it to the chain. Damaged
/// chains and generations are used as far as they are complete.
///
/// `folderName`: what people call the folder; becomes part of the generation's name. Answers the
/// generation's path below the folder. Throws std::system_error when the "ascmhl" folder, the
/// generation or the chain cannot be written; a generation that was written stays. Any thread, but
/// for one folder only one at a time.
PlatformKit::Path writeGeneration(PlatformKit::Folder& folder, const std::string& folderName,
                                  const std::vector<OffloadedFile>& files,
                                  std::size_t destinationIndex, const std::vector<Entry>& extra,
                                  HashKit::HashAlgorithm algorithm, PlatformKit::Date now);

}  // namespace OffloadKit::MHL
