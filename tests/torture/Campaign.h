#pragma once

#include "tests/torture/Bench.h"

#include <chrono>
#include <cstdint>
#include <optional>

namespace Torture {

/// What one campaign did and what it found.
struct Tally {
  std::string name;
  std::size_t faults = 0;  ///< kills, cuts or flipped bits
  Violations violations;
  std::chrono::steady_clock::duration took{};
};

/// Whether the long campaigns are wanted (the environment's ZEPHRIMARK_TORTURE is set), rather than
/// a sample of each.
bool isLong();
/// Of the environment's ZEPHRIMARK_SEED; else 1 for samples, and a new one for every long run.
std::uint64_t seed();

/// Kills a run before its calls of the seam and in the middle of its writes, at most `points` times
/// spread evenly, each time in a process of its own; a new run then has to finish the work.
/// `spoiling`: in the runs that are killed one copy is written with a wrong bit.
Tally killRuns(const Variant& variant, std::size_t points, bool spoiling, const Wrap& wrap = {});

/// Kills the real program at random moments: as soon as so many bytes lie on the drives.
Tally killProgram(std::size_t kills, std::uint64_t seed);

/// Records one run and cuts the power at most at `cuts` of its steps spread evenly and at its end,
/// three worst cases each (`Names` in DiskModel.h); a new run then has to finish the work. At the
/// end nothing may be lost that the run called verified.
Tally cutPower(const Variant& variant, std::size_t cuts, std::uint64_t seed, const Wrap& wrap = {});

/// The same with a real ext4, whose kernel lets nothing through from the cut on, as drive 0; needs
/// root and e2fsprogs, none without. One worst case each: what the kernel had not written.
std::optional<Tally> cutRealPower(const Variant& variant, std::size_t cuts);

/// Lets drive 0 die before at most `points` of its calls of the seam, spread evenly, in the two
/// ways in which drives die: the kernel goes on taking changes and keeps them in memory, or refuses
/// them. The run goes on with the other drive; then drive 0 comes back with what had been flushed,
/// and all that the run called verified has to be there.
Tally killDrive(const Variant& variant, std::size_t points, std::uint64_t seed,
                const Wrap& wrap = {});

/// Runs with one fault per file until `flips` bits were flipped or names taken, at random places
/// and moments: while writing, on the medium before and during the read-back, on the card at its
/// first and at its second reading, and in copies from earlier runs.
Tally corrupt(std::size_t flips, std::uint64_t seed, bool verifySource, const Wrap& wrap = {});

}  // namespace Torture
