#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace OffloadKit {

/// How much a group of small files takes at a time. The more it takes, the less is waited for; but
/// until a group is done nobody sees progress, and Stop waits for it. So a group should be done in
/// less than a second, whatever the drives. One thread.
class GroupPace {
 public:
  /// `chunkSize`: bytes of the transfer buffer, which is what the first group takes.
  explicit GroupPace(std::size_t chunkSize) : chunkSize_(chunkSize), room_(chunkSize) {}

  /// Bytes that a group may take, an eighth of the transfer buffer to eight of them.
  [[nodiscard]] std::uint64_t room() const { return room_; }
  /// What a file of that size takes of the room: some, even if it is empty.
  [[nodiscard]] std::uint64_t shareOf(std::uint64_t fileSize) const;
  /// A group that took `share` of the room was done in that time.
  void groupDone(std::uint64_t share, std::chrono::duration<double> time);

 private:
  std::uint64_t chunkSize_;
  std::uint64_t room_;
};

}  // namespace OffloadKit
