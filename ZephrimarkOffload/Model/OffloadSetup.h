#pragma once

#include "OffloadKit/Records/PlanRequest.h"
#include "PlatformKit/Dates.h"
#include "PlatformKit/VolumeWatcher.h"
#include "ZephrimarkOffload/Model/Background.h"
#include "ZephrimarkOffload/Model/Choices.h"
#include "ZephrimarkOffload/Model/DestinationMonitor.h"
#include "ZephrimarkOffload/Model/Settings.h"
#include "ZephrimarkOffload/Model/SourceMonitor.h"
#include "ZephrimarkOffload/Model/VolumeMonitor.h"

#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include <QObject>

namespace ZephrimarkOffload {

/// What is chosen for the next offload, by which rules it can be chosen, and what is known of the
/// cards and drives to choose from. Knows nothing of offloads that run. It asks the disks in the
/// background and shows what is known, so none of its calls waits for a disk. Everything on the
/// main thread. Names are bytes as volumes and files have them.
class OffloadSetup final : public QObject {
  Q_OBJECT

 public:
  /// At most this many destinations are taken one by one.
  static constexpr std::size_t kMostDestinations = 3;

  /// Reads the choices of the last time, follows the volumes and lists them. All arguments outlive
  /// it.
  OffloadSetup(Background& background, PlatformKit::VolumeWatcher& watcher, Settings& settings,
               const PlatformKit::Clock& clock);

  /// The cards and drives that are mounted, as far as they have been listed; in the order of
  /// mounting. Valid until the event loop runs again.
  [[nodiscard]] const std::vector<DeviceKit::Volume>& cards() const { return volumes_.cards(); }
  [[nodiscard]] const std::vector<DeviceKit::Volume>& drives() const { return volumes_.drives(); }
  /// The drives to offer: without the source and without those that hold a destination.
  [[nodiscard]] std::vector<DeviceKit::Volume> suggestedDrives() const;

  /// What was chosen to be offloaded; see SourceMonitor::source.
  [[nodiscard]] std::shared_ptr<const ChosenSource> source() const { return source_.source(); }
  [[nodiscard]] bool hasSource() const { return !source()->path.empty(); }
  [[nodiscard]] const std::string& camera() const { return source_.camera(); }

  [[nodiscard]] const std::vector<PlatformKit::Path>& destinations() const {
    return choices_.destinations;
  }
  /// None while it has not answered. `index`: of `destinations`.
  [[nodiscard]] std::optional<DestinationFacts> destinationFacts(std::size_t index) const;
  /// Whether there are destinations and all of them are on the computer's own disk.
  [[nodiscard]] bool onlyInternalCopies() const;

  /// Those of the last time, until they are changed.
  [[nodiscard]] const Options& options() const { return choices_; }

  /// All of it as a plan is made of: what is not known yet is missing in it, and a card image that
  /// is not possible is not in it. For the moment of the call.
  [[nodiscard]] OffloadKit::PlanRequest request() const;
  /// Why an offload cannot start, in words to act on; none when it can.
  [[nodiscard]] std::optional<std::string> blocker() const;

  /// Chooses a source; an empty path chooses none.
  void setSource(const PlatformKit::Path& source) { source_.choose(source); }
  /// Ignored when there are three already or it is one of them. Saved, as are the next three.
  void addDestination(const PlatformKit::Path& destination);
  void removeDestination(const PlatformKit::Path& destination);
  /// Replaces all of them, however many.
  void setDestinations(std::vector<PlatformKit::Path> destinations);
  /// Changes one option, as in `set(&Options::verifySource, false)`.
  template <class Value>
  void set(Value Options::*option, std::type_identity_t<Value> value) {
    choices_.*option = std::move(value);
    save();
    emit optionsChanged();
  }

  /// Lists cards and drives anew, drops a source that is gone and, when none is chosen, takes the
  /// only card. The lists follow a moment later.
  void refresh();

 signals:
  /// The lists of cards and drives are new.
  void volumesChanged();
  /// Another source is chosen, or more is known of it.
  void sourceChanged();
  /// Others are chosen, or something else is known of them, such as their free space.
  void destinationsChanged();
  /// An option was set, to whatever value.
  void optionsChanged();

 private:
  void save();
  void volumesListed(const std::optional<PlatformKit::Path>& gone);
  void replaceDestinations(std::vector<PlatformKit::Path> destinations);
  void followDestinations();
  void destinationsAnswered();

  Settings& settings_;
  const PlatformKit::Clock& clock_;
  Choices choices_;
  std::vector<PlatformKit::Path> unconfirmed_;  // saved destinations that may be gone
  SourceMonitor source_;
  DestinationMonitor destinations_;
  VolumeMonitor volumes_;
};

}  // namespace ZephrimarkOffload
