#pragma once

#include "OffloadKit/OffloadEngine.h"
#include "PlatformKit/Linux/LinuxFileSystem.h"
#include "PlatformKit/Linux/LinuxVolumes.h"
#include "PlatformKit/Testing/FakeRawDevices.h"
#include "PlatformKit/Testing/FakeVolumes.h"
#include "PlatformKit/Testing/TempFolder.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Torture {

using PlatformKit::Path;

/// What was found wrong, in sentences; empty is what every test wants.
using Violations = std::vector<std::string>;

/// Lays a file system of its own between engine and disk, to break a protection; empty: none.
using Wrap =
    std::function<std::unique_ptr<PlatformKit::FileSystem>(PlatformKit::FileSystem& below)>;

struct Item {
  std::string bytes;
  PlatformKit::Date modified{};
  friend bool operator==(const Item&, const Item&) = default;
};
/// Regular files by path relative to a folder, and the folders, which end in "/" and whose items
/// stay empty.
using Snapshot = std::map<std::string, Item>;

Snapshot snapshotOf(const Path& folder);
/// Makes the folder hold exactly what the snapshot has.
void restore(const Path& folder, const Snapshot& snapshot);
void writeItem(const Path& path, const Item& item);

/// What a campaign varies.
struct Variant {
  const char* name;
  std::size_t chunk;
  bool verifySource = true;
  bool fresh = false;  ///< the drives are empty but for the folders of the copies
  bool fat = false;    ///< a moved file has no size until it is flushed; see DiskModel
};

/// A card and two drives in a temporary folder, on which earlier runs and other people left things:
/// a verified copy with its records, a copy that nobody knows anything about, a different file
/// under the name of a clip, and files that have nothing to do with the card.
class Bench {
 public:
  static constexpr std::size_t kDrives = 2;
  static constexpr const char* kStrangersCopy = "stranger.mov";  ///< lies on drive 0
  static constexpr const char* kTaken = "taken.mov";             ///< another file on drive 1

  explicit Bench(const Variant& variant);

  [[nodiscard]] const Path& card() const { return card_; }
  [[nodiscard]] Path drives() const { return folder_.path() / "drives"; }
  [[nodiscard]] const Snapshot& cardBefore() const { return cardBefore_; }
  /// Of `drives()`.
  [[nodiscard]] const Snapshot& drivesBefore() const { return drivesBefore_; }
  /// Relative to `drives()`.
  [[nodiscard]] static std::string copies(std::size_t drive);
  [[nodiscard]] OffloadKit::OffloadPlan plan() const;

  /// The drives as they were before.
  void reset() const { restore(drives(), drivesBefore_); }
  /// Runs the plan, that many hours after the bench was made.
  OffloadKit::OffloadResult run(PlatformKit::FileSystem& fileSystem, int hour) const;
  OffloadKit::OffloadResult rerun() const;

  /// What must hold at every moment, whatever stopped a run: a name on a drive is the whole copy,
  /// what was there is unchanged, the card is as before, records are whole.
  [[nodiscard]] Violations violationsNow(bool strangersCopyCounts = true) const;
  /// What must hold beyond that when a run came to its end, for what it says.
  [[nodiscard]] Violations violationsOf(const OffloadKit::OffloadResult& result,
                                        bool strangersCopyCounts = true) const;
  /// What a run called verified and the records that it told of, as far as it is not on the drives.
  [[nodiscard]] Violations lostOf(const OffloadKit::OffloadResult& result) const;

 private:
  void checkNewest(std::size_t drive, const OffloadKit::OffloadResult& result,
                   Violations& violations) const;

  const Variant variant_;
  PlatformKit::Testing::TempFolder folder_;
  const Path card_ = folder_.path() / "card";
  mutable PlatformKit::LinuxFileSystem linux_;
  mutable PlatformKit::LinuxVolumes linuxVolumes_;
  mutable PlatformKit::Testing::FakeVolumes volumes_{linuxVolumes_};
  mutable PlatformKit::Testing::FakeRawDevices rawDevices_;
  Snapshot cardBefore_;
  Snapshot drivesBefore_;
};

/// Runs a plan in a new engine on `fileSystem`, at that hour. Throws what the engine throws.
OffloadKit::OffloadResult offload(
    const OffloadKit::OffloadPlan& plan, PlatformKit::FileSystem& fileSystem,
    PlatformKit::Volumes& volumes, int hour,
    const std::function<void(const Path& temporary)>& afterWrite = {});

}  // namespace Torture
