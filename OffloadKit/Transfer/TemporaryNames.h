#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace OffloadKit {

/// The temporary names of the copies of one run.
class TemporaryNames {
 public:
  /// The temporary name of one that lies where nothing else of that name can be: hidden,
  /// "." + name + ".zmpart".
  static std::string of(std::string_view name);

  /// `relativePaths`: all that the run copies, so that no temporary name is ever the name of one of
  /// them.
  explicit TemporaryNames(const std::vector<std::string_view>& relativePaths);

  /// The relative path of the file's temporary copy: in the same folder, hidden,
  /// "." + name + ".zmpart", shortened on a character boundary where that would not fit in 255
  /// bytes.
  [[nodiscard]] std::string forFile(const std::string& relativePath) const;

  /// Equal for two files whose temporary copies would be one on a drive that does not tell upper
  /// from lower case, so that the two cannot be on their way at the same time.
  [[nodiscard]] std::string keyOf(const std::string& relativePath) const;
  /// Whether all these files can be on their way at the same time: no two have one key. May, very
  /// rarely, say no although they can.
  [[nodiscard]] bool areDistinct(const std::vector<std::string_view>& relativePaths) const;

 private:
  [[nodiscard]] bool isTaken(const std::string& relativePath) const;

  std::unordered_set<std::string> taken_;
};

}  // namespace OffloadKit
