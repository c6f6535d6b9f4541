#pragma once

#include "OffloadKit/Records/OffloadResult.h"

#include <array>
#include <cstddef>
#include <vector>

namespace OffloadKit {

/// What a result amounts to. Whatever tells or acts on how an offload ended asks here: window,
/// terminal, JSON, notification, report, exit status and ejecting never weigh the result
/// themselves, so that they cannot disagree. A value, made once from a result that does not change
/// any more; any thread.
class Verdict {
 public:
  /// What can be found in a result, the worst first.
  enum class Finding {
    notVerified,      ///< a file is not verified on every drive
    cardUnreadable,   ///< something on the card could not be read, so files may be missing
    imageIncomplete,  ///< a card image was asked for and is not there, failed or has holes
    recordMissing,    ///< a drive with verified files lacks its report or its hash list
    throughCache,     ///< a drive was read back through the computer's cache; told, but no fault
    nothing,          ///< always there, and the worst where all is well
  };

  explicit Verdict(const OffloadResult& result);

  [[nodiscard]] bool has(Finding finding) const {
    return found_[static_cast<std::size_t>(finding)];
  }
  /// What people are told first: the title, and the sentence below it, are about this.
  [[nodiscard]] Finding worst() const;
  /// Whether every file is verified on this destination, which must be one of the plan's.
  [[nodiscard]] bool isVerifiedOn(std::size_t destination) const {
    return isVerifiedOn_.at(destination);
  }

  /// All that was asked for is there and proven: green, a check mark, and exit status 0.
  [[nodiscard]] bool isGood() const;
  /// Whether the card may be ejected unasked. Nobody reads a card again that is in a bag, so it
  /// stays while anything of it may be missing.
  [[nodiscard]] bool mayEject() const;

 private:
  std::array<bool, static_cast<std::size_t>(Finding::nothing) + 1> found_{};
  std::vector<bool> isVerifiedOn_;
};

}  // namespace OffloadKit
