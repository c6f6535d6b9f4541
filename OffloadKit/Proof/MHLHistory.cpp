#include "OffloadKit/Proof/MHLHistory.h"

#include "OffloadKit/Transfer/WholeFile.h"
#include "TextKit/Unicode.h"

#include <set>
#include <unordered_map>

namespace OffloadKit::MHL {
namespace {

constexpr std::uint64_t kLongestChain = std::uint64_t{16} << 20;
constexpr std::uint64_t kLongestHistory = std::uint64_t{2} << 30;

// A chain is a file that anybody may have written: it names files beside itself, nothing else.
bool isPlainName(const std::string& path) {
  return !path.empty() && path != "." && path != ".." && path.find('/') == std::string::npos;
}

}  // namespace

std::vector<ChainEntry> readChain(PlatformKit::Folder& folder, const PlatformKit::Path& lists) {
  ChainParser parser;
  // Ignored on purpose: what cannot be read is a chain that ends there.
  static_cast<void>(
      readWholeFile(folder, lists / kChainName, kLongestChain,
                    [&](std::string_view bytes, bool last) { return parser.feed(bytes, last); }));
  return parser.entries();
}

std::vector<bool> knownRows(PlatformKit::Folder& folder, const PlatformKit::Path& lists,
                            const std::vector<ChainEntry>& chain, const std::vector<Entry>& rows) {
  std::vector<bool> known(rows.size(), false);
  if (chain.empty()) return known;
  // Rows by the text that a reader of their own list would find.
  std::vector<std::string> paths;
  paths.reserve(rows.size());
  std::unordered_multimap<std::string_view, std::size_t> rowsByPath;
  rowsByPath.reserve(rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    paths.push_back(carriedPath(rows[i].path));
    rowsByPath.emplace(TextKit::trimmed(paths.back()), i);
  }
  std::uint64_t budget = kLongestHistory;
  std::set<std::string> read;
  for (const ChainEntry& entry : chain) {
    if (!isPlainName(entry.path) || !read.insert(entry.path).second) continue;
    PathParser parser([&](std::string_view path) {
      const auto [first, last] = rowsByPath.equal_range(path);
      for (auto row = first; row != last; ++row) known[row->second] = true;
    });
    // Ignored on purpose: what cannot be read is a generation that ends there.
    static_cast<void>(
        readWholeFile(folder, lists / entry.path, budget, [&](std::string_view bytes, bool last) {
          budget -= bytes.size();
          return parser.feed(bytes, last) && budget > 0;
        }));
  }
  return known;
}

}  // namespace OffloadKit::MHL
