#pragma once

#include "OffloadKit/Records/Reason.h"
#include "PlatformKit/Dates.h"

#include <cstdint>
#include <optional>
#include <string>

namespace OffloadKit {

/// One regular file found on the source.
struct SourceFile {
  /// Below the source folder, bytes as the file system has them, components separated by "/", no
  /// "/" at either end. The same on every destination.
  std::string relativePath;
  std::uint64_t size = 0;  ///< bytes, when scanned
  PlatformKit::Date modified{};
  std::optional<PlatformKit::Date> created;

  friend bool operator==(const SourceFile&, const SourceFile&) = default;
};

/// Something on the source that the scan could not read, so that files may be missing from its
/// list.
struct UnreadableItem {
  std::string relativePath;  ///< as in SourceFile; empty for the source folder itself
  Reason reason;

  friend bool operator==(const UnreadableItem&, const UnreadableItem&) = default;
};

}  // namespace OffloadKit
