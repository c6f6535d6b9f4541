#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ZephrimarkOffload {

/// What decides whether an offload can start.
struct Readiness {
  /// One destination.
  struct Room {
    std::string volumeName;                  ///< of the volume it lies on
    std::optional<std::uint64_t> freeSpace;  ///< bytes; none while the drive has not answered
  };

  bool hasSource = false;
  std::size_t sourceFileCount = 0;
  std::uint64_t sourceSize = 0;                ///< bytes
  std::vector<Room> destinations;              ///< in the user's order
  std::optional<std::uint64_t> cardImageSize;  ///< bytes; when an image is wanted and possible
};

/// Which destination receives a card image: the one with the most free space, of equal ones the
/// first. None without destinations. Any thread.
std::optional<std::size_t> imageDestination(const std::vector<Readiness::Room>& destinations);

/// The first reason why an offload cannot start, in words to act on; none when it can. Any thread.
std::optional<std::string> blocker(const Readiness& readiness);

}  // namespace ZephrimarkOffload
