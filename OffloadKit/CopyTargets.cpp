#include "OffloadKit/CopyTargets.h"

#include "OffloadKit/ErrorSentences.h"
#include "PlatformKit/Unicode.h"

#include <algorithm>
#include <cerrno>

namespace OffloadKit {
namespace {

using PlatformKit::FileSystem;
using PlatformKit::Path;

constexpr std::size_t kLongestName = 255;  // bytes, on every file system in use
constexpr std::string_view kSuffix = ".zmpart";

// Drives may not tell upper from lower case, so names that differ only in that count as one.
std::string folded(std::string_view relativePath) {
  return PlatformKit::upperCase(relativePath);
}

bool isCopyOf(const SourceFile& file, const PlatformKit::ItemStatus& there) {
  return there.kind == PlatformKit::ItemKind::regularFile && there.size == file.size &&
         std::chrono::abs(there.modified - file.modified) < std::chrono::seconds(2);
}

}  // namespace

bool alreadyThere(FileSystem& fileSystem, const SourceFile& file, const Path& destination) {
  const auto answer = fileSystem.status(destination / file.relativePath);
  return answer.ok() && isCopyOf(file, answer.value());
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

bool TemporaryNames::areDistinct(const std::vector<std::string_view>& relativePaths) const {
  // Hashes, because the keys themselves would be much memory.
  std::vector<std::size_t> hashes;
  hashes.reserve(relativePaths.size());
  for (const std::string_view path : relativePaths) {
    hashes.push_back(std::hash<std::string>{}(keyOf(std::string(path))));
  }
  std::sort(hashes.begin(), hashes.end());
  return std::adjacent_find(hashes.begin(), hashes.end()) == hashes.end();
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

std::string TemporaryNames::keyOf(const std::string& relativePath) const {
  return folded(forFile(relativePath));
}

TargetChoice chooseTarget(FileSystem& fileSystem, const SourceFile& file, const Path& source,
                          const Path& destination, const std::string& temporary,
                          KnownFolder& folder) {
  Path final = destination / file.relativePath;
  const Path parent = final.parent_path();
  if (folder.path != parent) folder = {parent, leadsOut(fileSystem, final, destination), false};
  if (folder.leadsOut) {
    return {SkipTarget{}, "A link in the destination folder leads to another place"};
  }
  if (const auto there = fileSystem.status(final); there.ok()) {
    if (!isCopyOf(file, there.value())) {
      return {SkipTarget{}, "A different file with this name is already in the destination folder"};
    }
    const auto original = fileSystem.status(source);
    if (original.ok() && original.value().identity == there.value().identity) {
      return {SkipTarget{}, "This is the card's own file, not a copy of it"};
    }
    return {ResumeTarget{std::move(final)}, {}};
  }
  if (!folder.exists) {
    const int error = createFolders(fileSystem, parent);
    if (error != 0) return {SkipTarget{}, {}, error};
    folder.exists = true;
  }
  auto copy = PendingCopy::create(fileSystem, destination / temporary, std::move(final));
  if (!copy.ok()) return {SkipTarget{}, {}, copy.error()};
  return {WriteTarget{std::move(copy.value())}, {}};
}

}  // namespace OffloadKit
