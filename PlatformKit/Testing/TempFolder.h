#pragma once

#include "PlatformKit/FileSystem.h"

#include <string>
#include <string_view>

namespace PlatformKit::Testing {

/// A new, empty folder that is removed with everything in it at the end of its life.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  /// Absolute, without links.
  [[nodiscard]] const Path& path() const { return path_; }

 private:
  Path path_;
};

/// Writes a file and its missing folders.
void writeFile(const Path& path, std::string_view content);

/// The content of a file; throws std::runtime_error when it cannot be read.
std::string readFile(const Path& path);

/// Copies a program into the folder and lets everybody reach it, as a build folder may not. Answers
/// the copy's path. Throws std::filesystem::filesystem_error.
Path programForEverybody(const Path& program, const TempFolder& folder);

/// Relative paths of everything below the folder, sorted; folders end in "/".
std::vector<std::string> tree(const Path& folder);

/// Bytes that differ from place to place and from seed to seed.
std::string pattern(std::size_t size, unsigned seed = 1);

}  // namespace PlatformKit::Testing
