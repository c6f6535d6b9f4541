#pragma once

#include "OffloadKit/Records/OffloadResult.h"

#include <cstddef>
#include <string>
#include <vector>

namespace OffloadKit::ResultTexts {

/// What a result says to people, in the window as on the terminal. In the user's language, valid
/// UTF-8, one line each. Any thread.

/// What the verdict finds worst: "Some files weren't verified", "Some of the card couldn't be
/// read", "Offload finished with problems" (of an image or a record), or "Offload verified".
std::string title(const OffloadResult& result);

/// What the title means, and what to do.
std::string sentence(const OffloadResult& result);

/// "1,204 · 64.2 GB".
std::string files(const OffloadResult& result);

/// "2 min 5 s · 245.3 MB/s", the card image counted in.
std::string took(const OffloadResult& result);

/// "XXH64, card read twice".
std::string checksum(const OffloadResult& result);

/// "1204 of 1204 verified · stopped: The drive is full"; tells, too, where the read-back may not
/// have reached the drive.
std::string drive(const OffloadResult& result, std::size_t destination);

/// What became of the card image: "128 GB verified · 3 unreadable blocks saved as zeros · …" or
/// "Not saved: " and why.
std::string cardImage(const CardImageResult& image);

/// "DCIM/A.MOV: The drive is full": the path and the first failure of the file.
std::string failedFile(const OffloadedFile& file);

/// "DCIM/BAD: Input/output error".
std::string unreadableItem(const UnreadableItem& item);

/// "The hash list could not be written to /media/T7/A001: The drive is full".
std::string missingRecord(const OffloadResult& result, const MissingRecord& missing);

/// The lines, and where there are more than `limit` of them, the first ones and how many more the
/// report lists.
std::vector<std::string> capped(std::vector<std::string> lines, std::size_t limit);

}  // namespace OffloadKit::ResultTexts
