#include "OffloadKit/Proof/MHLDocuments.h"
#include "fuzz/Input.h"
#include "fuzz/Xml.h"

using OffloadKit::MHL::ChainEntry;
using OffloadKit::MHL::ChainParser;

namespace {

std::size_t textIn(const std::vector<ChainEntry>& entries) {
  std::size_t size = 0;
  for (const ChainEntry& entry : entries) size += entry.path.size() + entry.c4.size();
  return size;
}

}  // namespace

/// Input: a chain file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto text = Fuzz::textOf(data, size);
  ChainParser whole;
  Fuzz::feed(whole, text, std::max<std::size_t>(size, 1));
  ChainParser inPieces;
  Fuzz::feed(inPieces, text, 1 + size % 7);
  Fuzz::require(whole.entries() == inPieces.entries(), "pieces of any size read the same");
  Fuzz::require(textIn(whole.entries()) <= 2 * size, "entries are no larger than their file");

  ChainParser again;
  Fuzz::require(Fuzz::feed(again, OffloadKit::MHL::chainDocument(whole.entries()), 4096),
                "what is written has no fault");
  Fuzz::require(again.entries() == whole.entries(), "what is written reads the same");
  return 0;
}
