#pragma once

#include "OffloadKit/Records/FolderPreset.h"
#include "OffloadKit/Records/OffloadPlan.h"
#include "PlatformKit/Dates.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace OffloadKit {

/// What somebody chose, with what is known of it: everything that a plan is made of. Window and
/// command line fill it in their own ways, then one rule makes the plan. A value without I/O; all
/// functions here any thread.
struct PlanRequest {
  /// A folder to copy to.
  struct Destination {
    ChosenPlace place;
    /// Bytes free on its volume. None while that is not known, which counts as 0 where the
    /// request's destinations are compared.
    std::optional<std::uint64_t> freeSpace = {};
  };

  /// The whole disk of the card.
  struct CardDisk {
    std::string devicePath;
    std::uint64_t size = 0;  ///< bytes
  };

  PlatformKit::Path source;  ///< empty as long as none is chosen
  std::string sourceName;    ///< how people know it; may be empty
  std::string camera;        ///< the brand
  FolderPreset preset;
  std::string project;                    ///< as typed; may be empty
  std::vector<Destination> destinations;  ///< in the user's order
  HashKit::HashAlgorithm algorithm = HashKit::HashAlgorithm::xxh64;
  bool verifySource = true;
  /// The disk to save an image of; none when no image is wanted or there is no such disk.
  std::optional<CardDisk> imageOf;
  PlatformKit::Date now{};  ///< the moment that the plan is made for
};

/// The relative folder that the copies go into on every destination; see FolderPreset::resolve. A
/// source without a name is called "Card" in it.
[[nodiscard]] std::string folderName(const PlanRequest& request);

/// Which destination receives a card image: the one with the most free space, of equal ones the
/// first. None without destinations.
[[nodiscard]] std::optional<std::size_t> imageDestination(const PlanRequest& request);

/// The plan: on every destination the folder that the template names, and the card image, if one is
/// wanted, on the destination with the most room. Checks nothing.
[[nodiscard]] OffloadPlan planFor(const PlanRequest& request);

}  // namespace OffloadKit
