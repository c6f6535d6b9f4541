#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <QString>

namespace Updates {

/// A version such as "1.10.2" or "2.0-beta.3". A value; any thread.
class Version {
 public:
  /// Reads one to eight numbers of up to nine digits between dots, and after a "-" the name of a
  /// pre-release: up to 40 ASCII letters, digits, dots and "-". None for anything else.
  [[nodiscard]] static std::optional<Version> parse(const QString& text);

  /// Whether this version came before `other`. Missing numbers are 0; a pre-release comes before
  /// its release; numbers within the names of pre-releases count as numbers, so "rc2" is before
  /// "rc10".
  [[nodiscard]] bool isBefore(const Version& other) const;

 private:
  std::vector<qulonglong> numbers_;  // without zeros at the end
  // The runs of digits and of letters; none for a release.
  std::vector<std::variant<qulonglong, std::string>> preRelease_;
};

}  // namespace Updates
