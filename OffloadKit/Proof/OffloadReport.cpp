#include "OffloadKit/Proof/OffloadReport.h"

#include "OffloadKit/Proof/MHLEntry.h"
#include "OffloadKit/Proof/Markup.h"
#include "OffloadKit/Records/Verdict.h"
#include "OffloadKit/Transfer/TemporaryNames.h"
#include "OffloadKit/Transfer/WholeFile.h"
#include "OffloadKit/Wording/Format.h"
#include "TextKit/ByteCount.h"
#include "TextKit/DateText.h"
#include "TextKit/Unicode.h"

#include <cerrno>
#include <system_error>

namespace OffloadKit::OffloadReport {
namespace {

using PlatformKit::Path;
using TextKit::byteCountText;

constexpr std::string_view kStyleBeforeVerdict =
    ":root { --ink:#1c1c1e; --muted:#6e6e73; --rule:#e2e2e0; --ok:#1f7a3a; --bad:#b3261e; "
    "--bg:#fff; }\n"
    "@media (prefers-color-scheme: dark) { :root { --ink:#f2f2f0; --muted:#9a9a9f; "
    "--rule:#2c2c2e; --ok:#5ccf7e; --bad:#ff8a80; --bg:#111214; } }\n"
    "body { font: 15px/1.5 -apple-system, system-ui, sans-serif; color: var(--ink); background: "
    "var(--bg); margin: 0; padding: 32px 24px; }\n"
    "main { max-width: 1100px; margin: 0 auto; }\n"
    "h1 { font-size: 26px; margin: 0 0 4px; letter-spacing: -0.02em; }\n"
    ".verdict { font-size: 17px; font-weight: 600; color: ";

constexpr std::string_view kStyleAfterVerdict =
    "; margin: 0 0 20px; }\n"
    "dl { display: grid; grid-template-columns: max-content 1fr; gap: 4px 20px; margin: 0 0 20px; "
    "}\n"
    "dt { color: var(--muted); } dd { margin: 0; }\n"
    "ul { padding-left: 18px; } li { margin-bottom: 8px; }\n"
    ".muted { color: var(--muted); font-size: 13px; }\n"
    ".here { font-size: 11px; text-transform: uppercase; letter-spacing: .06em; color: "
    "var(--muted); border: 1px solid var(--rule); border-radius: 4px; padding: 1px 5px; }\n"
    "table { width: 100%; border-collapse: collapse; font-size: 13px; margin-top: 12px; }\n"
    "th, td { text-align: left; padding: 6px 10px 6px 0; border-bottom: 1px solid var(--rule); "
    "vertical-align: top; }\n"
    "th { font-weight: 600; }\n"
    ".path { word-break: break-all; } .num { white-space: nowrap; }\n"
    ".hash { font: 12px ui-monospace, SFMono-Regular, Menlo, monospace; color: var(--muted); "
    "word-break: break-all; }\n"
    ".ok { color: var(--ok); } .bad { color: var(--bad); }\n"
    "footer { margin-top: 28px; color: var(--muted); font-size: 12px; }\n";

// A name may be any bytes, a page may not.
std::string shown(std::string_view text) {
  return escapeMarkup(TextKit::withoutControls(text));
}

std::string sentenceOf(const Verdict& verdict, const OffloadResult& result) {
  switch (verdict.worst()) {
    case Verdict::Finding::notVerified:
      return std::to_string(result.failedFiles().size()) +
             " file(s) were not verified on every drive. See below.";
    case Verdict::Finding::cardUnreadable:
      return "Some of the card couldn't be read. Don't erase the card yet.";
    case Verdict::Finding::imageIncomplete:
    case Verdict::Finding::recordMissing:
    case Verdict::Finding::throughCache:
    case Verdict::Finding::nothing:
      break;
  }
  return "Every file was copied and verified on every drive.";
}

std::string speedText(const OffloadResult& result) {
  const double elapsed = std::chrono::duration<double>(result.finished - result.started).count();
  const double bytes = static_cast<double>(result.totalBytes()) +
                       static_cast<double>(result.cardImage ? result.cardImage->size : 0);
  return byteCountText(elapsed > 0 ? static_cast<std::uint64_t>(bytes / elapsed) : 0) + "/s";
}

std::string figures(const OffloadResult& result) {
  const double elapsed = std::chrono::duration<double>(result.finished - result.started).count();
  std::string checksum(displayName(result.plan.algorithm));
  if (result.plan.verifySource) checksum += ", source read twice";
  return "<dl>\n"
         "  <dt>Started</dt><dd>" +
         TextKit::longDateText(result.started) +
         "</dd>\n"
         "  <dt>Took</dt><dd>" +
         Format::duration(elapsed) + " · " + speedText(result) +
         "</dd>\n"
         "  <dt>Files</dt><dd>" +
         std::to_string(result.files.size()) + " · " + byteCountText(result.totalBytes()) +
         "</dd>\n"
         "  <dt>Checksum</dt><dd>" +
         checksum +
         "</dd>\n"
         "  <dt>From</dt><dd>" +
         shown(result.plan.source.native()) +
         "</dd>\n"
         "</dl>\n";
}

std::string driveLine(const OffloadResult& result, std::size_t index, bool here) {
  std::string line = "<li><b>Drive " + std::to_string(index + 1) + "</b>";
  if (here) line += " <span class=here>this drive</span>";
  line += ": " + shown(result.plan.destinations[index].native()) + "<br><span class=muted>" +
          std::to_string(result.verifiedCount(index)) + " of " +
          std::to_string(result.files.size()) + " files verified";
  const auto error = result.destinationErrors.find(index);
  if (error != result.destinationErrors.end())
    line += " · stopped: " + shown(error->second.english());
  return line + "</span></li>";
}

void appendFileRow(std::string& page, const OffloadedFile& file) {
  page += "<tr><td class=path>";
  page += shown(file.file.relativePath);
  page += "</td><td class=num>";
  page += byteCountText(file.file.size);
  page += "</td><td class=hash>";
  page += file.hash.value_or("");
  page += "</td>";
  for (const auto& outcome : file.outcomes) {
    page += outcome.isVerified() ? "<td class=ok>Verified</td>"
                                 : "<td class=bad>" + shown(outcome.reason()->english()) + "</td>";
  }
  page += "</tr>\n";
}

void appendTable(std::string& page, const OffloadResult& result) {
  page += "\n<table><thead><tr><th>File</th><th>Size</th><th>";
  page += displayName(result.plan.algorithm);
  page += "</th>";
  for (std::size_t i = 0; i < result.plan.destinations.size(); ++i) {
    page += "<th>Drive " + std::to_string(i + 1) + "</th>";
  }
  page += "</tr></thead>\n<tbody>\n";
  for (const OffloadedFile& file : result.files) appendFileRow(page, file);
  page += "</tbody></table>\n";
}

constexpr std::string_view kHeading = "<h2 style=\"font-size:17px;margin:20px 0 6px\">";

// What somebody who is about to erase the card has to know.
void appendUnreadable(std::string& page, const OffloadResult& result) {
  if (result.unreadable.empty()) return;
  page += kHeading;
  page +=
      "Could not be read from the card</h2><p class=bad>Files may be missing from the table below. "
      "Don't erase the card yet.</p>\n<ul>\n";
  for (const UnreadableItem& item : result.unreadable) {
    page += "<li><span class=path>" +
            (item.relativePath.empty() ? "the whole card" : shown(item.relativePath)) +
            "</span><br><span class=muted>" + shown(item.reason.english()) + "</span></li>\n";
  }
  page += "</ul>\n";
}

// Names that hash lists can hold only in another form, so that a reader of the list finds the file.
void appendRewrittenNames(std::string& page, const OffloadResult& result) {
  std::string items;
  for (const OffloadedFile& file : result.files) {
    const std::string carried = MHL::carriedPath(file.file.relativePath);
    if (carried == file.file.relativePath) continue;
    items += "<li><span class=path>" + shown(file.file.relativePath) +
             "</span><br><span class=muted>" + escapeMarkup(carried) + "</span></li>\n";
  }
  if (items.empty()) return;
  page += kHeading;
  page +=
      "Names written differently in the hash list</h2><p class=muted>A hash list cannot hold some "
      "characters of these names. It has their bytes as % and two digits.</p>\n<ul>\n" +
      items + "</ul>\n";
}

}  // namespace

std::string write(PlatformKit::Folder& folder, const OffloadResult& result,
                  std::size_t destinationIndex) {
  const std::string start =
      "Offload Report " + TextKit::localDateText(result.started, "%Y-%m-%d %H%M");
  const std::string page = html(result, destinationIndex);
  std::vector<std::string_view> copied;
  for (const OffloadedFile& file : result.files) copied.emplace_back(file.file.relativePath);
  // Beside the copies, so it must not be the name of one of them.
  const Path temporary = TemporaryNames(copied).forFile("Offload Report");
  for (int number = 1;; ++number) {
    std::string name = start + (number == 1 ? "" : " (" + std::to_string(number) + ")") + ".html";
    if (folder.status(name).ok()) continue;
    const int error = writeWholeFile(folder, name, temporary, page, Existing::keep);
    if (error == 0) return name;
    if (error != EEXIST) throw std::system_error(error, std::generic_category());
  }
}

std::string html(const OffloadResult& result, std::optional<std::size_t> highlight) {
  constexpr std::size_t kUsualRow = 160;  // bytes
  const Verdict verdict(result);
  const std::string title = "Offload report: " + shown(result.plan.sourceName);
  std::string page;
  page.reserve(8192 + result.files.size() * kUsualRow);
  page +=
      "<!doctype html>\n"
      "<html lang=\"en\"><head><meta charset=\"utf-8\"><meta name=\"viewport\" "
      "content=\"width=device-width, initial-scale=1\">\n"
      "<title>" +
      title + "</title>\n<style>\n";
  page += kStyleBeforeVerdict;
  page += verdict.isGood() ? "var(--ok)" : "var(--bad)";
  page += kStyleAfterVerdict;
  page += "</style></head><body><main>\n<h1>" + title + "</h1>\n<p class=verdict>" +
          sentenceOf(verdict, result) + "</p>\n";
  appendUnreadable(page, result);
  page += figures(result) + "<ul>";
  for (std::size_t i = 0; i < result.plan.destinations.size(); ++i) {
    page += driveLine(result, i, highlight == i);
  }
  page += "</ul>\n" + imageSection(result);
  appendTable(page, result);
  appendRewrittenNames(page, result);
  page +=
      "<footer>Made with Zephrimark Offload. Checksums are also saved in the ascmhl folder (ASC "
      "MHL "
      "v2.0) for verification with any MHL tool.</footer>\n"
      "</main></body></html>";
  return page;
}

std::string imageSection(const OffloadResult& result) {
  if (!result.cardImage) return {};
  const CardImageResult& image = *result.cardImage;
  std::string text(kHeading);
  text += "Card image</h2><p>";
  if (result.plan.cardImage) {
    text += "Drive " + std::to_string(result.plan.cardImage->destinationIndex + 1);
  }
  text += ": " + shown(image.relativePath) + "<br>";
  if (image.outcome.isVerified()) {
    text += "<span class=ok>Verified</span> · " + byteCountText(image.size) + " · " +
            std::string(displayName(result.plan.algorithm)) + " <span class=hash>" +
            image.hash.value_or("");
  } else {
    text += "<span class=bad>Not saved: " + shown(image.outcome.reason()->english());
  }
  text += "</span>";
  if (image.unreadableBlocks >= 1) {
    text += "<br><span class=bad>" + std::to_string(image.unreadableBlocks) +
            " unreadable block(s) on the card were saved as zeros.</span>";
  }
  return text +
         "<br><span class=muted>A sector-by-sector copy of the whole card. Open it in Zephrimark "
         "Kestrine to look for deleted or lost files.</span></p>";
}

}  // namespace OffloadKit::OffloadReport
