#include "OffloadKit/CopyTargets.h"

#include "OffloadKit/ErrorSentences.h"
#include "PlatformKit/Unicode.h"

#include <algorithm>
#include <cerrno>

namespace OffloadKit {
namespace {

using PlatformKit::FileSystem;
using PlatformKit::Path;
using Outcome = OffloadedFile::Outcome;

constexpr std::size_t kLongestName = 255;  // bytes, on every file system in use
constexpr std::string_view kSuffix = ".zmpart";

// Drives may not tell upper from lower case, so names that differ only in that count as one.
std::string folded(std::string_view relativePath) {
  return PlatformKit::upperCase(relativePath);
}

bool isSameItem(FileSystem& fileSystem, const Path& a, const Path& b) {
  const auto first = fileSystem.status(a);
  const auto second = fileSystem.status(b);
  return first.ok() && second.ok() && first.value().identity == second.value().identity;
}

// One destination's share of the choice. Where nothing is to be done, either sets `outcome` or
// leaves the system's error number in `error`.
CopyTarget chooseTarget(FileSystem& fileSystem, const SourceFile& file, const Path& source,
                        const Path& destination, const std::string& temporary, Outcome& outcome,
                        int& error) {
  const Path final = destination / file.relativePath;
  if (leadsOut(fileSystem, final, destination)) {
    outcome = Outcome::failed("A link in the destination folder leads to another place");
    return SkipTarget{};
  }
  if (alreadyThere(fileSystem, file, destination)) {
    if (!isSameItem(fileSystem, final, source)) return ResumeTarget{final};
    outcome = Outcome::failed("This is the card's own file, not a copy of it");
    return SkipTarget{};
  }
  if (fileSystem.status(final).ok()) {
    outcome =
        Outcome::failed("A different file with this name is already in the destination folder");
    return SkipTarget{};
  }
  error = createFolders(fileSystem, final.parent_path());
  if (error != 0) return SkipTarget{};
  auto copy = PendingCopy::create(fileSystem, destination / temporary, final);
  error = copy.error();
  if (error != 0) return SkipTarget{};
  return WriteTarget{std::move(copy.value())};
}

}  // namespace

bool alreadyThere(FileSystem& fileSystem, const SourceFile& file, const Path& destination) {
  const auto answer = fileSystem.status(destination / file.relativePath);
  if (!answer.ok()) return false;
  const auto& there = answer.value();
  return there.kind == PlatformKit::ItemKind::regularFile && there.size == file.size &&
         std::chrono::abs(there.modified - file.modified) < std::chrono::seconds(2);
}

bool leadsOut(FileSystem& fileSystem, const Path& file, const Path& destination) {
  const auto folder = fileSystem.resolve(nearestExisting(fileSystem, file.parent_path()));
  const auto inside = fileSystem.resolve(destination);
  if (!folder.ok() || !inside.ok()) return false;
  const Path& top = inside.value();
  return std::mismatch(top.begin(), top.end(), folder.value().begin(), folder.value().end())
             .first != top.end();
}

TemporaryNames::TemporaryNames(const std::vector<std::string_view>& relativePaths) {
  const std::string suffix = folded(kSuffix);
  for (const std::string_view path : relativePaths) {
    const std::string name = folded(path) + "/";
    // The file and the folders above it.
    for (std::size_t end = name.find('/'); end != std::string::npos;
         end = name.find('/', end + 1)) {
      const std::string_view item = std::string_view(name).substr(0, end);
      if (item.ends_with(suffix)) taken_.emplace(item);
    }
  }
}

bool TemporaryNames::isTaken(const std::string& relativePath) const {
  return !taken_.empty() && taken_.contains(folded(relativePath));
}

std::string TemporaryNames::forFile(const std::string& relativePath) const {
  const std::size_t slash = relativePath.rfind('/');
  const std::size_t nameStart = slash == std::string::npos ? 0 : slash + 1;
  const std::string folder = relativePath.substr(0, nameStart);
  const std::string_view name = std::string_view(relativePath).substr(nameStart);
  std::string suffix(kSuffix);
  for (int attempt = 1;; ++attempt) {
    std::string temporary = folder + ".";
    temporary += PlatformKit::shortened(name, kLongestName - 1 - suffix.size());
    temporary += suffix;
    if (!isTaken(temporary)) return temporary;
    suffix = "~" + std::to_string(attempt) + std::string(kSuffix);
  }
}

std::vector<CopyTarget> chooseTargets(FileSystem& fileSystem, const SourceFile& file,
                                      const Path& source, const std::vector<Path>& destinations,
                                      const TemporaryNames& temporaryNames,
                                      DestinationHealth& health, std::vector<Outcome>& outcomes) {
  const std::string temporary = temporaryNames.forFile(file.relativePath);
  std::vector<CopyTarget> targets;
  targets.reserve(destinations.size());
  for (std::size_t i = 0; i < destinations.size(); ++i) {
    health.checkVolume(i);
    if (const std::string* sentence = health.givenUp(i)) {
      outcomes[i] = Outcome::failed(*sentence);
      targets.emplace_back(SkipTarget{});
      continue;
    }
    int error = 0;
    targets.push_back(
        chooseTarget(fileSystem, file, source, destinations[i], temporary, outcomes[i], error));
    if (error != 0) outcomes[i] = Outcome::failed(health.otherError(i, error));
  }
  return targets;
}

}  // namespace OffloadKit
