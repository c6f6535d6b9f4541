#include "OffloadKit/Proof/MHLDocuments.h"
#include "OffloadKit/Proof/Markup.h"
#include "TextKit/Unicode.h"
#include "fuzz/Input.h"
#include "fuzz/Markup.h"

#include <string>

using OffloadKit::MHL::carriedPath;
using OffloadKit::MHL::Entry;

namespace {

// The bytes that the carried form of a rewritten name stands for.
std::string decoded(const std::string& carried) {
  std::string name;
  for (std::size_t i = 0; i < carried.size(); ++i) {
    if (carried[i] != '%') {
      name += carried[i];
      continue;
    }
    name += static_cast<char>(std::stoi(carried.substr(i + 1, 2), nullptr, 16));
    i += 2;
  }
  return name;
}

void checkCarried(const std::string& name) {
  const std::string carried = carriedPath(name);
  const auto plain = Fuzz::elementsOf("<a>" + OffloadKit::escapeMarkup(name) + "</a>");
  const bool fits = plain && plain->front().text == name && name.find('\r') == std::string::npos;
  Fuzz::require((carried == name) == fits, "exactly what XML cannot hold is rewritten");
  Fuzz::require(fits || decoded(carried) == name, "a rewritten name tells its bytes");
  Fuzz::require(carriedPath(carried) == carried, "a rewritten name is rewritten no more");
}

}  // namespace

/// Input: paths of files, with zero bytes between.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<Entry> rows;
  for (const auto part : Fuzz::partsOf(Fuzz::textOf(data, size), 100)) {
    const std::string name(part);
    checkCarried(name);
    rows.push_back({name, size, {}, "00"});
  }
  const auto elements = Fuzz::elementsOf(generationDocument(
      rows, std::vector<bool>(rows.size(), true), HashKit::HashAlgorithm::md5, {}));
  Fuzz::require(elements.has_value(), "what is written has no fault");
  std::size_t row = 0;
  for (const Fuzz::Element& element : *elements) {
    if (element.name != "path") continue;
    Fuzz::require(row < rows.size() && element.text == carriedPath(rows[row].path),
                  "every reader finds the path of every row");
    ++row;
  }
  Fuzz::require(row == rows.size(), "there is one path for each row");
  return 0;
}
