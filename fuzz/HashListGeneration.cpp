#include "OffloadKit/Proof/MHLDocuments.h"
#include "TextKit/Unicode.h"
#include "fuzz/Input.h"
#include "fuzz/Xml.h"

#include <string>

using OffloadKit::MHL::Entry;

namespace {

struct Reading {
  std::vector<std::string> paths;
  bool isFaultless = false;
};

Reading read(std::string_view text, std::size_t piece) {
  Reading reading;
  OffloadKit::MHL::PathParser parser(
      [&](std::string_view path) { reading.paths.emplace_back(path); });
  reading.isFaultless = Fuzz::feed(parser, text, piece);
  return reading;
}

}  // namespace

/// Input: a generation file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto text = Fuzz::textOf(data, size);
  const Reading whole = read(text, std::max<std::size_t>(size, 1));
  Fuzz::require(read(text, 1 + size % 7).paths == whole.paths, "pieces of any size read the same");

  std::vector<Entry> rows;
  std::vector<std::string> expected;
  for (const std::string& path : whole.paths) {
    rows.push_back({path, size, {}, "00"});
    expected.emplace_back(TextKit::trimmed(OffloadKit::MHL::carriedPath(path)));
  }
  const Reading again = read(
      generationDocument(rows, std::vector<bool>(rows.size()), HashKit::HashAlgorithm::xxh64, {}),
      4096);
  Fuzz::require(again.isFaultless, "what is written has no fault");
  Fuzz::require(again.paths == expected, "what is written reads the same");
  return 0;
}
