#include "OffloadKit/Wording/ResultTexts.h"

#include "OffloadKit/Records/Verdict.h"
#include "OffloadKit/Wording/Format.h"
#include "OffloadKit/Wording/ShownReason.h"
#include "TextKit/ByteCount.h"
#include "TextKit/Translation.h"
#include "TextKit/Unicode.h"

#include <algorithm>
#include <chrono>

namespace OffloadKit::ResultTexts {
namespace {

using TextKit::filled;
using TextKit::shownByteCount;
using TextKit::singleLineText;
using TextKit::translate;
using Finding = Verdict::Finding;

std::string shownLine(const Reason& reason) {
  return singleLineText(shown(reason));
}

std::string verifiedEverywhere(const OffloadResult& result) {
  const std::size_t drives = result.plan.destinations.size();
  const std::string name = singleLineText(result.plan.sourceName);
  if (drives == 2) {
    return filled(translate("Result",
                            "Every file from %1 was copied and read back identical on both "
                            "drives."),
                  {name});
  }
  return filled(
      translate("Result", "Every file from %1 was copied and read back identical on all %2 drives.",
                "Every file from %1 was copied and read back identical on the drive.", drives),
      {name, std::to_string(drives)});
}

std::string imageVerified(const CardImageResult& image) {
  const std::string size = shownByteCount(image.size);
  const std::size_t unreadable = image.unreadableBlocks;
  if (unreadable == 0) {
    return filled(translate("Result",
                            "%1 verified · open it in Zephrimark Kestrine to look for deleted "
                            "files"),
                  {size});
  }
  return filled(translate("Result",
                          "%1 verified · %2 unreadable blocks saved as zeros · open it in "
                          "Zephrimark Kestrine to look for deleted files",
                          "%1 verified · %2 unreadable blocks saved as zeros · open it in "
                          "Zephrimark Kestrine to look for deleted files",
                          unreadable),
                {size, std::to_string(unreadable)});
}

}  // namespace

std::string title(const OffloadResult& result) {
  switch (Verdict(result).worst()) {
    case Finding::notVerified:
      return translate("Result", "Some files weren't verified");
    case Finding::cardUnreadable:
      return translate("Result", "Some of the card couldn't be read");
    case Finding::imageIncomplete:
    case Finding::recordMissing:
      return translate("Notice", "Offload finished with problems");
    case Finding::throughCache:
    case Finding::nothing:
      break;
  }
  return translate("Result", "Offload verified");
}

std::string sentence(const OffloadResult& result) {
  const Finding worst = Verdict(result).worst();
  if (worst == Finding::notVerified) {
    const std::size_t failed = result.failedFiles().size();
    return filled(
        translate("Result", "%1 files didn't make it onto every drive. Don't erase the card yet.",
                  "%1 file didn't make it onto every drive. Don't erase the card yet.", failed),
        {std::to_string(failed)});
  }
  if (worst == Finding::cardUnreadable) {
    return translate("Result",
                     "Every file that could be listed is verified, but there may be more. Don't "
                     "erase the card yet.");
  }
  return verifiedEverywhere(result);
}

std::string files(const OffloadResult& result) {
  return Format::grouped(result.files.size()) + " · " + shownByteCount(result.totalBytes());
}

std::string took(const OffloadResult& result) {
  const double seconds = std::chrono::duration<double>(result.finished - result.started).count();
  const std::uint64_t bytes = result.totalBytes() + (result.cardImage ? result.cardImage->size : 0);
  const double speed = seconds > 0 ? static_cast<double>(bytes) / seconds : 0;
  // A clock that was set during the run can make this as large as it likes.
  const auto whole = static_cast<std::uint64_t>(std::min(speed, 1e18));
  return Format::shownDuration(seconds) + " · " + Format::speed(whole);
}

std::string checksum(const OffloadResult& result) {
  const std::string name(displayName(result.plan.algorithm));
  return result.plan.verifySource ? filled(translate("Result", "%1, card read twice"), {name})
                                  : name;
}

std::string drive(const OffloadResult& result, std::size_t destination) {
  const std::string verified = std::to_string(result.verifiedCount(destination));
  const std::string all = std::to_string(result.files.size());
  const auto error = result.destinationErrors.find(destination);
  if (error == result.destinationErrors.end()) {
    if (result.readThroughCache.contains(destination)) {
      return filled(
          translate("Result", "%1 of %2 verified · read back through this computer's cache"),
          {verified, all});
    }
    return filled(translate("Result", "%1 of %2 verified"), {verified, all});
  }
  return filled(translate("Result", "%1 of %2 verified · stopped: %3"),
                {verified, all, shownLine(error->second)});
}

std::string cardImage(const CardImageResult& image) {
  if (image.outcome.isVerified()) return imageVerified(image);
  return filled(translate("Result", "Not saved: %1"), {shownLine(*image.outcome.reason())});
}

std::string failedFile(const OffloadedFile& file) {
  const auto failed = std::find_if(file.outcomes.begin(), file.outcomes.end(),
                                   [](const auto& outcome) { return !outcome.isVerified(); });
  return singleLineText(file.file.relativePath) + ": " +
         (failed == file.outcomes.end() ? "" : shownLine(*failed->reason()));
}

std::string unreadableItem(const UnreadableItem& item) {
  const std::string name = item.relativePath.empty() ? translate("Result", "The whole card")
                                                     : singleLineText(item.relativePath);
  return name + ": " + shownLine(item.reason);
}

std::string missingRecord(const OffloadResult& result, const MissingRecord& missing) {
  const std::string folder =
      singleLineText(result.plan.destinations.at(missing.destination).native());
  const std::string text =
      missing.kind == MissingRecord::Kind::report
          ? translate("Result", "The report could not be written to %1: %2")
          : translate("Result", "The hash list could not be written to %1: %2");
  return filled(text, {folder, shownLine(missing.reason)});
}

std::vector<std::string> capped(std::vector<std::string> lines, std::size_t limit) {
  if (lines.size() <= limit) return lines;
  const std::size_t more = lines.size() - limit;
  lines.resize(limit);
  lines.push_back(filled(translate("Result", "…and %1 more, listed in the report.",
                                   "…and %1 more, listed in the report.", more),
                         {std::to_string(more)}));
  return lines;
}

}  // namespace OffloadKit::ResultTexts
