#include "CommandLine/Verdict.h"

#include "CommandLine/Output.h"
#include "CommandLine/Table.h"
#include "OffloadKit/Wording/ResultTexts.h"
#include "OffloadKit/Wording/ShownReason.h"
#include "TextKit/Translation.h"
#include "TextKit/Unicode.h"

#include <algorithm>

#include <fmt/format.h>

namespace CommandLine {
namespace {

using OffloadKit::OffloadResult;
using OffloadKit::Verdict;
using TextKit::filled;
using TextKit::singleLineText;
using TextKit::translate;
namespace ResultTexts = OffloadKit::ResultTexts;

std::string headline(const OffloadResult& result, bool good, bool onStandardError) {
  return styled((good ? "✓ " : "✗ ") + ResultTexts::title(result), good ? Style::good : Style::bad,
                onStandardError) +
         "\n" + ResultTexts::sentence(result) + "\n";
}

std::string figures(const OffloadResult& result) {
  const std::vector<TableRow> rows = {
      {translate("Terminal", "Files"), ResultTexts::files(result)},
      {translate("Terminal", "Took"), ResultTexts::took(result)},
      {translate("Terminal", "Checksum"), ResultTexts::checksum(result)}};
  return "\n" + tableText(rows, {}, "  ");
}

std::string mark(bool good, bool onStandardError) {
  return styled(good ? "✓" : "✗", good ? Style::good : Style::bad, onStandardError);
}

std::string driveLine(const OffloadResult& result, std::size_t index, bool complete,
                      bool onStandardError) {
  const auto resumed =
      std::count_if(result.files.begin(), result.files.end(),
                    [index](const auto& file) { return file.outcomes[index].isResumed(); });
  std::string outcome = ResultTexts::drive(result, index);
  if (resumed > 0) {
    outcome =
        filled(translate("Terminal", "%1 · %2 already there"), {outcome, std::to_string(resumed)});
  }
  return fmt::format("  {} {}\n    {}\n", mark(complete, onStandardError),
                     singleLineText(result.plan.destinations[index].native()), outcome);
}

std::string imageLine(const OffloadKit::CardImageResult& image, bool whole, bool onStandardError) {
  const bool saved = image.outcome.isVerified();
  return fmt::format("  {} {}\n    {}\n{}", mark(whole, onStandardError),
                     translate("Terminal", "Card image"), ResultTexts::cardImage(image),
                     saved ? "    " + singleLineText(image.url.native()) + "\n" : "");
}

std::string records(const std::string& title, const std::vector<PlatformKit::Path>& files) {
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
    return text + "    " + singleLineText(OffloadKit::shown(*outcomes.front().reason())) + "\n";
  }
  for (std::size_t i = 0; i < outcomes.size(); ++i) {
    if (outcomes[i].isVerified()) continue;
    text += fmt::format("    {}: {}\n", singleLineText(result.plan.destinations[i].native()),
                        singleLineText(OffloadKit::shown(*outcomes[i].reason())));
  }
  return text;
}

}  // namespace

std::string verdictText(const OffloadResult& result, const Verdict& verdict, bool onStandardError) {
  std::string text = headline(result, verdict.isGood(), onStandardError) + figures(result) + "\n";
  for (std::size_t i = 0; i < result.plan.destinations.size(); ++i) {
    text += driveLine(result, i, verdict.isVerifiedOn(i), onStandardError);
  }
  if (result.cardImage) {
    const bool whole = !verdict.has(Verdict::Finding::imageIncomplete);
    text += imageLine(*result.cardImage, whole, onStandardError);
  }
  const auto failed = result.failedFiles();
  if (!failed.empty()) {
    text +=
        "\n" +
        styled(translate("Terminal", "Not verified everywhere"), Style::strong, onStandardError) +
        "\n";
    for (const auto* file : failed) text += failedFile(result, *file);
  }
  if (!result.unreadable.empty()) {
    text += "\n" +
            styled(translate("Terminal", "Could not be read from the card"), Style::strong,
                   onStandardError) +
            "\n";
    for (const auto& item : result.unreadable) {
      text += "  " + ResultTexts::unreadableItem(item) + "\n";
    }
  }
  if (!result.missingRecords.empty()) {
    text += "\n" +
            styled(translate("Terminal", "Not every drive has its report and its hash list"),
                   Style::strong, onStandardError) +
            "\n";
    for (const auto& missing : result.missingRecords) {
      text += "  " + ResultTexts::missingRecord(result, missing) + "\n";
    }
  }
  text += records(translate("Terminal", "Reports"), result.reports) +
          records(translate("Terminal", "Hash lists"), result.mhlFiles);
  return forThisTerminal(text);
}

}  // namespace CommandLine
