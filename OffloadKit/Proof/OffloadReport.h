#pragma once

#include "OffloadKit/Records/OffloadResult.h"
#include "PlatformKit/FileSystem.h"

#include <cstddef>
#include <optional>
#include <string>

/// The report of an offload: one self-contained HTML page per destination, for light and dark
/// screens, without scripts or other files.
namespace OffloadKit::OffloadReport {

/// Writes the report of one destination into its `folder`, under a name made of the time the run
/// started; a number is added where that name is taken. Answers its name. `destinationIndex` must
/// be one of the plan's. Throws std::system_error when it cannot be written; nothing partial is
/// left.
std::string write(PlatformKit::Folder& folder, const OffloadResult& result,
                  std::size_t destinationIndex);

/// The whole page, UTF-8. `highlight`: the destination that is marked as "this drive". Any thread.
std::string html(const OffloadResult& result, std::optional<std::size_t> highlight);

/// The block about the card image; empty when there is none. Any thread.
std::string imageSection(const OffloadResult& result);

}  // namespace OffloadKit::OffloadReport
