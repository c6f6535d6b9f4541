#pragma once

#include "DeviceKit/VolumeLists.h"
#include "ZephrimarkOffload/Model/DiskQueries.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace ZephrimarkOffload::SetupTexts {

/// What the setup screen says of the choices. In the user's language, valid UTF-8, one line each.
/// Any thread.

/// "64.2 GB used of 128 GB"; empty when the size is unknown.
std::string used(std::int64_t capacity, std::int64_t available);

/// What stands below the name of a chosen source that is not in the list of cards: how full it is
/// for a volume, for a folder its path with `home` shortened to "~".
std::string sourceDetail(const SourceFacts& facts, const PlatformKit::Path& source,
                         const PlatformKit::Path& home);

/// "1204 files · 64.2 GB · Canon"; "Reading the card…" until the files are counted.
std::string sourceSummary(const SourceCount& count, const std::string& camera);

/// "This Computer" on its own disk, else the name of the volume.
std::string destinationName(const DestinationFacts& facts);

/// Where on its drive a destination is: for one on the computer's own disk the path with `home`
/// shortened to "~", else the path below the volume or "Top level of the drive".
std::string placeOnDrive(const DestinationFacts& facts, const PlatformKit::Path& destination,
                         const PlatformKit::Path& home);

/// "412 GB free".
std::string freeText(std::uint64_t bytes);

/// What follows the folder's name: "on the drive", "on each drive".
std::string onDrives(std::size_t destinations);

/// What follows the label of the card image: its size and the destination that receives it.
std::string cardImageDetail(std::uint64_t size, const std::string& destinationName);

/// What the card image is for; with `isPossible` false, what it needs.
std::string cardImageCaption(bool isPossible);

/// "64.2 GB to 2 drives".
std::string startSummary(std::uint64_t size, std::size_t destinations);

/// Every placeholder of a folder template with its meaning, one per line.
std::string tokensHelp();

}  // namespace ZephrimarkOffload::SetupTexts
