#include "OffloadKit/Proof/OffloadReport.h"
#include "TextKit/Unicode.h"
#include "fuzz/Input.h"
#include "fuzz/Markup.h"

#include <string>

using namespace OffloadKit;

namespace {

void replaceAll(std::string& text, std::string_view from, std::string_view to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
}

// The page as XML, which is stricter. Names are escaped in it, so these replacements meet none.
std::string asXml(std::string page) {
  replaceAll(page, "<!doctype html>", "");
  replaceAll(page, "<meta charset=\"utf-8\">", "");
  replaceAll(page, "initial-scale=1\">", "initial-scale=1\"/>");
  replaceAll(page, "<br>", "<br/>");
  for (const std::string kind : {"path", "num", "hash", "ok", "bad", "muted", "here", "verdict"}) {
    replaceAll(page, " class=" + kind + ">", " class=\"" + kind + "\">");
  }
  // Two characters that are in UTF-8, but not in XML.
  replaceAll(page, "\xEF\xBF\xBE", "?");
  replaceAll(page, "\xEF\xBF\xBF", "?");
  return page;
}

std::string shown(std::string_view name) {
  std::string text = TextKit::withoutControls(name);
  replaceAll(text, "\xEF\xBF\xBE", "?");
  replaceAll(text, "\xEF\xBF\xBF", "?");
  return text;
}

}  // namespace

/// Input: names, with zero bytes between: the card's, a reason, and those of files.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  auto parts = Fuzz::partsOf(Fuzz::textOf(data, size), 50);
  parts.resize(std::max<std::size_t>(parts.size(), 2));
  const std::string name(parts[0]);
  const std::string text(parts[1]);
  const auto reason = Reason::fromOutside(text);
  OffloadResult result;
  result.plan.source = name;
  result.plan.sourceName = name;
  result.plan.destinations = {"/" + name, text};
  result.destinationErrors = {{1, reason}};
  result.unreadable = {{text, Reason::fromOutside(name)}};
  CardImageResult image;
  image.relativePath = name;
  image.outcome = CardImageResult::Outcome::failed(reason);
  result.cardImage = image;
  for (std::size_t i = 2; i < parts.size(); ++i) {
    OffloadedFile& file = result.files.emplace_back();
    file.file = {std::string(parts[i]), size, {}, {}};
    file.outcomes = {OffloadedFile::Outcome::verified(i % 2 == 0),
                     OffloadedFile::Outcome::failed(reason)};
  }
  const std::string page = OffloadReport::html(result, 0);
  Fuzz::require(TextKit::validUtf8(page) == page, "the page is UTF-8");
  const auto elements = Fuzz::elementsOf(asXml(page));
  Fuzz::require(elements.has_value(), "the page is well-formed");
  std::size_t file = 0;
  for (const Fuzz::Element& element : *elements) {
    if (element.name == "title") {
      Fuzz::require(element.text == "Offload report: " + shown(name), "the title has the name");
    }
    if (element.name != "td" || element.kind != "path") continue;
    Fuzz::require(
        file < result.files.size() && element.text == shown(result.files[file].file.relativePath),
        "every file is in the table by its name");
    ++file;
  }
  Fuzz::require(file == result.files.size(), "the table has one row for each file");
  return 0;
}
