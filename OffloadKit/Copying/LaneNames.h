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

  /// A verified copy has its final name now, relative to the lane's folder. `copy`: which file it
  /// is.
  void named(const PlatformKit::Path& final, PlatformKit::ItemIdentity copy);
  /// A copy that was there already was verified; whoever put it there may not have flushed it.
  void found(const PlatformKit::Path& final);

  /// Flushes the names given so far, where a file has just been flushed without an error. Any
  /// thread, while no names are given here.
  void flushNow();

  /// The lane's volume was flushed as a whole after the last name was given here. `error`: 0, or
  /// the number that this answered. `provenSince`: files were flushed on it afterwards, all without
  /// an error; some file systems say yes to the flush of a volume that is lost already.
  void volumeFlushed(int error, bool provenSince);

  /// Flushes everything, and makes failures of the verified outcomes on destination `index` whose
  /// names are not on the drive for certain: where flushing failed, now or before, where the folder
  /// that they were given in is not found under its path any more, and where the drive is gone.
  /// `files`: those of the run, in the order in which they got their names. `probe`: the relative
  /// path of a hidden file that no copy has.
  void flushAll(std::vector<OffloadedFile>& files, std::size_t index,
                const PlatformKit::Path& probe);

 private:
  /// Below this folder names may be lost.
  struct Failure {
    PlatformKit::Path folder;
    Reason reason;
    bool isElsewhere;  ///< also what was durable before
  };
  /// The first copy that was named in a folder since names were flushed: where it is found again,
  /// so are the others.
  struct Witness {
    PlatformKit::Path final;
    PlatformKit::ItemIdentity copy;
  };

  /// Answers whether it is the first of its folder since names were flushed.
  bool count(const PlatformKit::Path& final);
  void look(std::size_t firstWitness);
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
  std::set<PlatformKit::Path> witnessed_;  // folders with a witness since names were flushed
  std::vector<Witness> witnesses_;
  std::size_t looked_ = 0;  // so many of them were found where they should be, or told
  // Kept, because a second flush may say yes: an error is told once.
  std::vector<Failure> failures_;
};

}  // namespace OffloadKit
