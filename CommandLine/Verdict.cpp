#include "CommandLine/Verdict.h"

#include "CommandLine/Output.h"
#include "OffloadKit/Format.h"
#include "PlatformKit/ByteCount.h"
#include "PlatformKit/Unicode.h"

#include <algorithm>

#include <fmt/format.h>

namespace CommandLine {
namespace {

using OffloadKit::OffloadResult;
using OffloadKit::Format::counted;
using OffloadKit::Format::grouped;
using PlatformKit::byteCountText;
using PlatformKit::singleLineText;

std::string drivesPhrase(std::size_t drives) {
  if (drives == 1) return "the drive";
  if (drives == 2) return "both drives";
  return fmt::format("all {} drives", drives);
}

std::string headline(const OffloadResult& result, bool onStandardError) {
  if (!result.allVerified()) {
    return styled("✗ Some files weren't verified", Style::bad, onStandardError) +
           fmt::format("\n{} didn't make it onto every drive. Don't erase the card yet.\n",
                       counted(result.failedFiles().size(), "file"));
  }
  if (!result.unreadable.empty()) {
    return styled("✗ Some of the card couldn't be read", Style::bad, onStandardError) +
           "\nEvery file that could be listed is verified, but there may be more. "
           "Don't erase the card yet.\n";
  }
  return styled("✓ Offload verified", Style::good, onStandardError) +
         fmt::format("\nEvery file from {} was copied and read back identical on {}.\n",
                     singleLineText(result.plan.sourceName),
                     drivesPhrase(result.plan.destinations.size()));
}

std::string figures(const OffloadResult& result) {
  const double seconds = std::chrono::duration<double>(result.finished - result.started).count();
  const double speed = seconds > 0 ? static_cast<double>(result.totalBytes()) / seconds : 0;
  return fmt::format(
      "\n  Files     {} · {}\n  Took      {} · {}/s\n  Checksum  {}{}\n",
      grouped(result.files.size()), byteCountText(result.totalBytes()),
      OffloadKit::Format::duration(seconds), byteCountText(static_cast<std::uint64_t>(speed)),
      displayName(result.plan.algorithm), result.plan.verifySource ? ", card read twice" : "");
}

std::string driveLine(const OffloadResult& result, std::size_t index, bool onStandardError) {
  const std::size_t verified = result.verifiedCount(index);
  const bool complete = verified == result.files.size();
  const auto resumed = static_cast<std::size_t>(
      std::count_if(result.files.begin(), result.files.end(),
                    [index](const auto& file) { return file.outcomes[index].isResumed(); }));
  std::string line = fmt::format(
      "  {} {}\n    {} of {} verified",
      styled(complete ? "✓" : "✗", complete ? Style::good : Style::bad, onStandardError),
      singleLineText(result.plan.destinations[index].native()), grouped(verified),
      grouped(result.files.size()));
  if (resumed > 0) line += fmt::format(" · {} already there", grouped(resumed));
  const auto error = result.destinationErrors.find(index);
  if (error != result.destinationErrors.end()) line += " · stopped: " + error->second;
  return line + "\n";
}

std::string imageLine(const OffloadKit::CardImageResult& image, bool onStandardError) {
  const bool saved = image.outcome.isVerified();
  std::string line = "  " +
                     styled(saved ? "✓" : "✗", saved ? Style::good : Style::bad, onStandardError) +
                     " Card image\n    ";
  if (!saved) return line + "Not saved: " + image.outcome.reason() + "\n";
  line += byteCountText(image.size) + " verified";
  if (image.unreadableBlocks > 0) {
    line += fmt::format(" · {} unreadable blocks saved as zeros", grouped(image.unreadableBlocks));
  }
  return line + "\n    " + singleLineText(image.url.native()) + "\n";
}

std::string records(const char* title, const std::vector<PlatformKit::Path>& files) {
  std::string text = files.empty() ? "" : fmt::format("\n{}\n", title);
  for (const auto& file : files) text += "  " + singleLineText(file.native()) + "\n";
  return text;
}

// A file that failed everywhere for one reason needs one line, any other a line per drive.
std::string failedFile(const OffloadResult& result, const OffloadKit::OffloadedFile& file) {
  const auto& outcomes = file.outcomes;
  std::string text = "  " + singleLineText(file.file.relativePath) + "\n";
  if (std::all_of(outcomes.begin(), outcomes.end(),
                  [&](const auto& outcome) { return outcome == outcomes.front(); })) {
    return text + "    " + singleLineText(outcomes.front().reason()) + "\n";
  }
  for (std::size_t i = 0; i < outcomes.size(); ++i) {
    if (outcomes[i].isVerified()) continue;
    text += fmt::format("    {}: {}\n", singleLineText(result.plan.destinations[i].native()),
                        singleLineText(outcomes[i].reason()));
  }
  return text;
}

}  // namespace

std::string verdict(const OffloadResult& result, bool onStandardError) {
  std::string text = headline(result, onStandardError) + figures(result) + "\n";
  for (std::size_t i = 0; i < result.plan.destinations.size(); ++i) {
    text += driveLine(result, i, onStandardError);
  }
  if (result.cardImage) text += imageLine(*result.cardImage, onStandardError);
  const auto failed = result.failedFiles();
  if (!failed.empty()) {
    text += "\n" + styled("Not verified everywhere", Style::strong, onStandardError) + "\n";
    for (const auto* file : failed) text += failedFile(result, *file);
  }
  if (!result.unreadable.empty()) {
    text += "\n" + styled("Could not be read from the card", Style::strong, onStandardError) + "\n";
    for (const auto& item : result.unreadable) {
      text += fmt::format(
          "  {}\n    {}\n",
          item.relativePath.empty() ? "(the whole card)" : singleLineText(item.relativePath),
          item.reason);
    }
  }
  text += records("Reports", result.reports) + records("Hash lists", result.mhlFiles);
  return forThisTerminal(text);
}

}  // namespace CommandLine
