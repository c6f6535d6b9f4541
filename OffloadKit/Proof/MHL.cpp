#include "OffloadKit/Proof/MHL.h"

#include "OffloadKit/Proof/C4.h"
#include "OffloadKit/Proof/MHLDocuments.h"
#include "OffloadKit/Proof/MHLHistory.h"
#include "OffloadKit/Transfer/DurableNames.h"
#include "OffloadKit/Transfer/FileDigest.h"
#include "OffloadKit/Transfer/TemporaryNames.h"
#include "OffloadKit/Transfer/WholeFile.h"
#include "TextKit/Collation.h"
#include "TextKit/DateText.h"
#include "TextKit/Unicode.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <system_error>

#include <fmt/format.h>

namespace OffloadKit::MHL {
namespace {

using PlatformKit::Date;
using PlatformKit::Path;

constexpr std::size_t kLongestName = 255;  // bytes, on every file system in use

void throwIf(int error) {
  if (error != 0) throw std::system_error(error, std::generic_category());
}

std::vector<Entry> rowsOf(const std::vector<OffloadedFile>& files, std::size_t destinationIndex) {
  std::vector<Entry> rows;
  for (const OffloadedFile& file : files) {
    if (!file.outcomes[destinationIndex].isVerified() || !file.hash) continue;
    rows.push_back({file.file.relativePath, file.file.size, file.file.modified, *file.hash});
  }
  return rows;
}

// The reports of this and earlier runs that lie in the folder.
void addReports(PlatformKit::Folder& folder, HashKit::HashAlgorithm algorithm,
                std::vector<Entry>& rows) {
  constexpr std::size_t kPiece = std::size_t{1} << 20;
  const auto listing = folder.list({});
  if (!listing.ok()) return;
  const std::size_t before = rows.size();
  for (const auto& item : listing.value().entries) {
    if (!item.name.starts_with("Offload Report") || !item.status.ok()) continue;
    // Anybody may have put a pipe or a device there; opening alone can do things to those.
    if (item.status.value().kind != PlatformKit::ItemKind::regularFile) continue;
    const auto isListed = [&](const Entry& row) { return row.path == item.name; };
    const auto end = rows.begin() + static_cast<std::ptrdiff_t>(before);
    if (std::any_of(rows.begin(), end, isListed)) continue;
    const auto hash = hashFile(folder, item.name, algorithm, kPiece);
    if (!hash.ok()) continue;
    const auto& status = item.status.value();
    rows.push_back({item.name, status.size, status.modified, hash.value()});
  }
}

std::vector<Entry> inFileBrowserOrder(std::vector<Entry> rows) {
  std::vector<std::string_view> paths;
  paths.reserve(rows.size());
  for (const Entry& row : rows) paths.emplace_back(row.path);
  std::vector<Entry> sorted;
  sorted.reserve(rows.size());
  for (const std::size_t position : TextKit::fileBrowserOrder(paths)) {
    sorted.push_back(std::move(rows[position]));
  }
  return sorted;
}

// Whether copies lie in the folder of lists: on a drive that does not tell upper from lower case,
// where a card's folder "ASCMHL" is the same one.
bool holdsCopies(PlatformKit::Folder& folder, const Path& lists,
                 const std::vector<OffloadedFile>& files) {
  const auto ours = folder.status(lists);
  return ours.ok() && std::any_of(files.begin(), files.end(), [&](const OffloadedFile& file) {
           const std::string& path = file.file.relativePath;
           const std::string top = path.substr(0, path.find('/'));
           if (TextKit::upperCase(top) != "ASCMHL") return false;
           const auto theirs = folder.status(top);
           return theirs.ok() && theirs.value().identity == ours.value().identity;
         });
}

// Number and time are what a reader needs; a long folder name gives way to them.
std::string generationName(std::int64_t number, const std::string& folderName, Date now) {
  const std::string start = fmt::format("{:04}_", number);
  const std::string end = "_" + TextKit::utcDateText(now, "%Y-%m-%d_%H%M%S") + "Z.mhl";
  std::string name = carriedPath(folderName);
  std::replace(name.begin(), name.end(), '/', '-');
  return start + std::string(TextKit::shortened(name, kLongestName - start.size() - end.size())) +
         end;
}

}  // namespace

Path writeGeneration(PlatformKit::Folder& folder, const std::string& folderName,
                     const std::vector<OffloadedFile>& files, std::size_t destinationIndex,
                     const std::vector<Entry>& extra, HashKit::HashAlgorithm algorithm, Date now) {
  const Path lists = "ascmhl";
  throwIf(createFolders(folder, lists));
  // No list is worth a verified copy that it would replace.
  if (holdsCopies(folder, lists, files)) throwIf(EEXIST);
  std::vector<ChainEntry> chain = readChain(folder, lists);

  std::vector<Entry> rows = rowsOf(files, destinationIndex);
  rows.insert(rows.end(), extra.begin(), extra.end());
  addReports(folder, algorithm, rows);
  rows = inFileBrowserOrder(std::move(rows));
  const std::vector<bool> known = knownRows(folder, lists, chain, rows);

  std::int64_t last = chain.empty() ? 0 : std::numeric_limits<std::int64_t>::min();
  for (const ChainEntry& entry : chain) last = std::max(last, entry.sequence);
  // A chain that claims the highest number of all must not overflow ours.
  const std::int64_t number = last == std::numeric_limits<std::int64_t>::max() ? last : last + 1;
  const std::string name = generationName(number, folderName, now);
  const std::string generation = generationDocument(rows, known, algorithm, now);
  // The folder of lists is ours alone, so one temporary name serves.
  const Path temporary = lists / TemporaryNames::of("list");
  throwIf(writeWholeFile(folder, lists / name, temporary, generation, Existing::keep));

  chain.push_back({number, name, c4ID(generation)});
  std::stable_sort(chain.begin(), chain.end(), [](const ChainEntry& a, const ChainEntry& b) {
    return a.sequence < b.sequence;
  });
  throwIf(writeWholeFile(folder, lists / kChainName, temporary, chainDocument(chain),
                         Existing::replace));
  // For the name of the folder of lists itself.
  throwIf(flushNames(folder, {}));
  return lists / name;
}

}  // namespace OffloadKit::MHL
