#pragma once

#include "OffloadKit/Copying/HeldDestination.h"
#include "OffloadKit/Records/OffloadResult.h"
#include "OffloadKit/Records/Reason.h"
#include "PlatformKit/System.h"

#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace OffloadKit {

/// The final names that verified copies got on a lane, and up to which copy they are on the drive
/// for certain, so that they survive a power cut and a drive that dies. Remembers the folders they
/// lie in and flushes them, together with all folders above them on their volume: those may be new
/// without being the run's, since a run that was killed left them, or somebody made them just
/// before. The run's thread, but for `flushNow`.
class LaneNames {
 public:
  /// `lane`: where the names are given; outlives it.
  LaneNames(PlatformKit::System system, HeldDestination& lane) : system_(system), lane_(lane) {}
  /// Flushes what has not been flushed; failures are ignored, since nobody is left to be told.
  ~LaneNames();
  LaneNames(const LaneNames&) = delete;
  LaneNames& operator=(const LaneNames&) = delete;

  /// A verified copy has its final name now, relative to the lane's folder. `resumed`: it was put
  /// there by somebody else, who may not have flushed it.
  void verified(const PlatformKit::Path& final, bool resumed);

  /// Flushes the names given so far, where a file has just been flushed without an error. Any
  /// thread, while no names are given here.
  void flushNow();

  /// The lane's volume was flushed as a whole after the last name was given here. `error`: 0, or
  /// the number that this answered. `provenSince`: files were flushed on it afterwards, all without
  /// an error; some file systems say yes to the flush of a volume that is lost already.
  void volumeFlushed(int error, bool provenSince);

  /// Flushes everything, and makes failures of the verified outcomes on destination `index` whose
  /// names are not on the drive for certain: where flushing failed, now or before, and where the
  /// drive is gone. `files`: those of the run, in the order in which they got their names. `probe`:
  /// the relative path of a hidden file that no copy has.
  void flushAll(std::vector<OffloadedFile>& files, std::size_t index,
                const PlatformKit::Path& probe);

 private:
  /// Below this folder names may be lost.
  struct Failure {
    PlatformKit::Path folder;
    Reason reason;
  };

  void flush();
  void flushAbove();
  void failed(const PlatformKit::Path& folder, int error);
  /// All names given so far were flushed, unless something failed.
  void flushed();
  void takeBack(std::vector<OffloadedFile>& files, std::size_t index) const;

  PlatformKit::System system_;
  HeldDestination& lane_;
  std::set<PlatformKit::Path> unflushed_;  // folders with names that have yet to be flushed
  std::set<PlatformKit::Path> reachable_;  // folders whose own names were flushed, up to the root
  std::string lastFolder_;                 // of the copy verified last
  bool holdsResumed_ = false;              // copies of others since the volume was flushed
  std::size_t verified_ = 0;               // copies so far
  std::size_t flushed_ = 0;                // so many of them, from the first on, it is said
  std::size_t durable_ = 0;                // and so many for certain
  // Kept, because a second flush may say yes: an error is told once.
  std::vector<Failure> failures_;
};

}  // namespace OffloadKit
