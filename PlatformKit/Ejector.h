#pragma once

#include <string>

namespace PlatformKit {

/// Makes a disk safe to take out.
class Ejector {
 public:
  enum class Answer {
    ejected,  ///< nothing of it is mounted, and it was ejected or switched off where it can be
    unmountedOnly,  ///< nothing of it is mounted, but ejecting it or switching it off did not work
    busy,           ///< a program is using it; what could be unmounted stays unmounted
    declined,       ///< the user or the system's policy said no
    unavailable,    ///< no service that could do it, or it does not know the disk
    failed,         ///< the device or its file system reported an error
  };

  virtual ~Ejector() = default;

  /// Unmounts every volume of the whole disk ("sdb"), then ejects its medium, or switches it off
  /// where it cannot be ejected; a card in a slot that knows neither is only unmounted. Blocks,
  /// also while the user is asked for a password and while the disk takes what was written to it;
  /// any thread but the one that draws the screen. Never throws.
  [[nodiscard]] virtual Answer ejectDisk(const std::string& identifier) = 0;
};

}  // namespace PlatformKit
