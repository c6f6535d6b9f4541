#include "OffloadKit/ResultTexts.h"

#include "OffloadKit/Format.h"
#include "PlatformKit/ByteCount.h"
#include "PlatformKit/Unicode.h"

#include <algorithm>
#include <chrono>

#include <fmt/format.h>

namespace OffloadKit::ResultTexts {
namespace {

using PlatformKit::byteCountText;
using PlatformKit::singleLineText;

}  // namespace

std::string drivesPhrase(std::size_t drives) {
  if (drives == 1) return "the drive";
  if (drives == 2) return "both drives";
  return fmt::format("all {} drives", drives);
}

std::string title(const OffloadResult& result) {
  if (!result.allVerified()) return "Some files weren't verified";
  if (!result.unreadable.empty()) return "Some of the card couldn't be read";
  return "Offload verified";
}

std::string sentence(const OffloadResult& result) {
  if (!result.allVerified()) {
    const std::size_t failed = result.failedFiles().size();
    return fmt::format("{} file{} didn't make it onto every drive. Don't erase the card yet.",
                       failed, failed == 1 ? "" : "s");
  }
  if (!result.unreadable.empty()) {
    return "Every file that could be listed is verified, but there may be more. "
           "Don't erase the card yet.";
  }
  return fmt::format("Every file from {} was copied and read back identical on {}.",
                     singleLineText(result.plan.sourceName),
                     drivesPhrase(result.plan.destinations.size()));
}

std::string files(const OffloadResult& result) {
  return Format::grouped(result.files.size()) + " · " + byteCountText(result.totalBytes());
}

std::string took(const OffloadResult& result) {
  const double seconds = std::chrono::duration<double>(result.finished - result.started).count();
  const std::uint64_t bytes = result.totalBytes() + (result.cardImage ? result.cardImage->size : 0);
  const double speed = seconds > 0 ? static_cast<double>(bytes) / seconds : 0;
  // A clock that was set during the run can make this as large as it likes.
  const auto whole = static_cast<std::uint64_t>(std::min(speed, 1e18));
  return Format::duration(seconds) + " · " + byteCountText(whole) + "/s";
}

std::string checksum(const OffloadResult& result) {
  return std::string(displayName(result.plan.algorithm)) +
         (result.plan.verifySource ? ", card read twice" : "");
}

std::string drive(const OffloadResult& result, std::size_t destination) {
  std::string text =
      fmt::format("{} of {} verified", result.verifiedCount(destination), result.files.size());
  const auto error = result.destinationErrors.find(destination);
  if (error != result.destinationErrors.end()) {
    text += " · stopped: " + singleLineText(error->second);
  }
  return text;
}

std::string cardImage(const CardImageResult& image) {
  if (!image.outcome.isVerified()) {
    return "Not saved: " + singleLineText(image.outcome.reason());
  }
  std::string text = byteCountText(image.size) + " verified";
  if (image.unreadableBlocks > 0) {
    text += fmt::format(" · {} unreadable blocks saved as zeros", image.unreadableBlocks);
  }
  return text + " · open it in Zephrimark Kestrine to look for deleted files";
}

std::string failedFile(const OffloadedFile& file) {
  const auto failed = std::find_if(file.outcomes.begin(), file.outcomes.end(),
                                   [](const auto& outcome) { return !outcome.isVerified(); });
  return singleLineText(file.file.relativePath) + ": " +
         (failed == file.outcomes.end() ? "" : singleLineText(failed->reason()));
}

std::string unreadableItem(const UnreadableItem& item) {
  return (item.relativePath.empty() ? "The whole card" : singleLineText(item.relativePath)) + ": " +
         singleLineText(item.reason);
}

std::vector<std::string> capped(std::vector<std::string> lines, std::size_t limit) {
  if (lines.size() <= limit) return lines;
  const std::size_t more = lines.size() - limit;
  lines.resize(limit);
  lines.push_back(fmt::format("…and {} more, listed in the report.", more));
  return lines;
}

}  // namespace OffloadKit::ResultTexts
