#pragma once

#include "HashKit/HashAlgorithm.h"
#include "OffloadKit/Records/FolderPreset.h"
#include "PlatformKit/FileSystem.h"

#include <string>
#include <vector>

namespace ZephrimarkOffload {

/// The path in its plain form: without ".", ".." and doubled slashes, and without one at its end.
/// Any thread.
inline PlatformKit::Path normalized(const PlatformKit::Path& path) {
  const PlatformKit::Path plain = path.lexically_normal();
  return plain.has_filename() ? plain : plain.parent_path();
}

/// How an offload is to be done, whatever the card and the drives are.
struct Options {
  OffloadKit::FolderPreset preset{"{date}/{card}"};
  std::string project;
  HashKit::HashAlgorithm algorithm = HashKit::HashAlgorithm::xxh64;
  bool verifySource = true;    ///< read the card twice
  bool ejectWhenDone = false;  ///< eject the card when everything is verified
  bool saveCardImage = false;

  friend bool operator==(const Options&, const Options&) = default;
};

/// What the user chose for good: kept from one launch to the next.
struct Choices : Options {
  std::vector<PlatformKit::Path> destinations;  ///< chosen folders or drive roots, absolute

  friend bool operator==(const Choices&, const Choices&) = default;
};

}  // namespace ZephrimarkOffload
