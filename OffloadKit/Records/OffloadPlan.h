#pragma once

#include "HashKit/HashAlgorithm.h"
#include "PlatformKit/Dates.h"
#include "PlatformKit/FileSystem.h"
#include "PlatformKit/Volumes.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace OffloadKit {

/// The card image that a plan asks for.
struct CardImageRequest {
  /// The folder on a destination that receives card images.
  static constexpr const char* folderName = "Card Image";

  std::string devicePath;            ///< the card's whole-disk device node
  std::size_t destinationIndex = 0;  ///< which of the plan's destinations receives the image
  std::uint64_t size = 0;            ///< bytes of the device, counted into that destination's need
};

/// The folder that somebody chose and that a destination is below, and the volume on which it lay
/// then (see volumeOf). A run does not begin when it lies on another one by now: its drive was
/// unmounted.
struct ChosenPlace {
  PlatformKit::Path folder;
  std::optional<PlatformKit::VolumeIdentifier> volume;  ///< none: not known
  std::string name = {};                                ///< how people know it; may be empty
};

/// What one run is asked to do. Nothing is checked or clamped here.
struct OffloadPlan {
  PlatformKit::Path source;  ///< a mounted card's root or any folder; only read
  std::string sourceName;    ///< the card's or folder's name, as people know it
  /// Destination folders in the user's order. The index into this list, the destination index,
  /// identifies a destination everywhere.
  std::vector<PlatformKit::Path> destinations;
  /// What the destinations were chosen as; see ChosenPlace. Empty, or one for each.
  std::vector<ChosenPlace> chosen = {};
  HashKit::HashAlgorithm algorithm = HashKit::HashAlgorithm::xxh64;
  bool verifySource = true;   ///< read every source file a second time and compare
  std::size_t chunkSize = 0;  ///< bytes of every transfer buffer; 8 MiB is usual
  std::optional<CardImageRequest> cardImage;
  PlatformKit::Date made{};  ///< when; what is left of a run is reckoned from there
};

/// The chunk size that applications use, in bytes.
inline constexpr std::size_t kUsualChunkSize = std::size_t{8} * 1024 * 1024;

}  // namespace OffloadKit
