#include "OffloadKit/Transfer/TemporaryNames.h"

#include "TextKit/Unicode.h"

#include <algorithm>
#include <functional>

namespace OffloadKit {
namespace {

constexpr std::size_t kLongestName = 255;  // bytes, on every file system in use
constexpr std::string_view kSuffix = ".zmpart";

// Drives may not tell upper from lower case, so names that differ only in that count as one.
std::string folded(std::string_view relativePath) {
  return TextKit::upperCase(relativePath);
}

}  // namespace

std::string TemporaryNames::of(std::string_view name) {
  return "." + std::string(name) + std::string(kSuffix);
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
    temporary += TextKit::shortened(name, kLongestName - 1 - suffix.size());
    temporary += suffix;
    if (!isTaken(temporary)) return temporary;
    suffix = "~" + std::to_string(attempt) + std::string(kSuffix);
  }
}

std::string TemporaryNames::keyOf(const std::string& relativePath) const {
  return folded(forFile(relativePath));
}

}  // namespace OffloadKit
