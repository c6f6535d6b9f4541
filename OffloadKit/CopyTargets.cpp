#include "OffloadKit/CopyTargets.h"

#include "OffloadKit/ErrorSentences.h"
#include "PlatformKit/Unicode.h"

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

// One destination's share of the choice. Where nothing is to be done, either sets `outcome` or
// leaves the system's error number in `error`.
CopyTarget chooseTarget(FileSystem& fileSystem, const SourceFile& file, const Path& destination,
                        const std::string& temporary, Outcome& outcome, int& error) {
  const Path final = destination / file.relativePath;
  if (alreadyThere(fileSystem, file, destination)) return ResumeTarget{final};
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

TemporaryNames::TemporaryNames(const std::vector<std::string_view>& relativePaths) {
  const std::string suffix = folded(kSuffix);
  for (const std::string_view path : relativePaths) {
    std::string name = folded(path);
    if (name.ends_with(suffix)) taken_.insert(std::move(name));
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
                                      const std::vector<Path>& destinations,
                                      const TemporaryNames& temporaryNames,
                                      DestinationHealth& health, std::vector<Outcome>& outcomes) {
  const std::string temporary = temporaryNames.forFile(file.relativePath);
  std::vector<CopyTarget> targets;
  targets.reserve(destinations.size());
  for (std::size_t i = 0; i < destinations.size(); ++i) {
    if (const std::string* sentence = health.givenUp(i)) {
      outcomes[i] = Outcome::failed(*sentence);
      targets.emplace_back(SkipTarget{});
      continue;
    }
    int error = 0;
    targets.push_back(
        chooseTarget(fileSystem, file, destinations[i], temporary, outcomes[i], error));
    if (error != 0) outcomes[i] = Outcome::failed(health.otherError(i, error));
  }
  return targets;
}

}  // namespace OffloadKit
