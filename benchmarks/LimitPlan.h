#pragma once

#include "benchmarks/DirectFile.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// How the bytes of a card are moved.
struct LimitPlan {
  enum class Write {
    extend,     ///< past the cache, behind the end of a new file
    reserve,    ///< past the cache, into room that was reserved for the whole file first
    cached,     ///< through the cache
    overwrite,  ///< past the cache, over a file that is there
  };
  static constexpr std::uint64_t kBlock = 4096;  // bytes; direct requests are aligned to it

  std::uint64_t request = std::uint64_t{4} << 20;  // bytes
  std::uint64_t depth = 2;                         // requests under way in each reading and writing
  std::uint64_t parts = 1;                         // each is flushed and read back for itself
  Write write = Write::extend;
  Way readWay = Way::direct;
  std::uint64_t bytes = UINT64_MAX;  // a multiple of kBlock, no more than the card has
  std::string card;                  // a file
  std::vector<std::string> folders;  // one on each drive

  [[nodiscard]] std::uint64_t requests() const { return (bytes + request - 1) / request; }
  [[nodiscard]] std::uint64_t partOf(std::uint64_t number) const {
    return number * parts / requests();
  }
  /// How many requests each part has; none, if there are more parts than requests.
  [[nodiscard]] std::vector<std::uint64_t> requestsOfParts() const;

  /// nullopt where the arguments are wrong or the card has no block; a message is printed then.
  static std::optional<LimitPlan> parse(int argc, char** argv);
};
