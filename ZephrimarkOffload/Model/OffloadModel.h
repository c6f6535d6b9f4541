#pragma once

#include "OffloadKit/Records/OffloadProgress.h"
#include "PlatformKit/Dates.h"
#include "PlatformKit/VolumeWatcher.h"
#include "ZephrimarkOffload/Model/Background.h"
#include "ZephrimarkOffload/Model/Choices.h"
#include "ZephrimarkOffload/Model/Desktop.h"
#include "ZephrimarkOffload/Model/DestinationBoard.h"
#include "ZephrimarkOffload/Model/OffloadRunner.h"
#include "ZephrimarkOffload/Model/Readiness.h"
#include "ZephrimarkOffload/Model/Settings.h"
#include "ZephrimarkOffload/Model/Stage.h"
#include "ZephrimarkOffload/Model/VolumeBoard.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <QObject>

namespace ZephrimarkOffload {

/// The application's state: what is chosen, what blocks the start, the offload that runs, and how
/// it ended. Screens read it and write the user's choices into it. It asks the disks in the
/// background and shows what is known, so none of its calls waits for a disk. Everything on the main
/// thread. Names are bytes as volumes and files have them.
class OffloadModel final : public QObject {
  Q_OBJECT

 public:
  /// What it works with; all but the shared ones outlive it.
  struct Services {
    std::shared_ptr<DiskQuestions> questions;
    PlatformKit::VolumeWatcher& watcher;
    Desktop& desktop;
    Settings& settings;
    const PlatformKit::Clock& clock;
    std::function<std::unique_ptr<OffloadRunner>()> makeRunner;
  };

  /// At most this many destinations are taken one by one.
  static constexpr std::size_t kMostDestinations = 3;

  /// Reads the settings, follows the volumes and lists them.
  explicit OffloadModel(Services services);
  /// Stops an offload that runs and waits for it.
  ~OffloadModel() override;

  [[nodiscard]] const Stage& stage() const { return stage_; }
  [[nodiscard]] const std::vector<DeviceKit::Volume>& cards() const { return cards_; }
  [[nodiscard]] const std::vector<DeviceKit::Volume>& drives() const { return drives_; }

  [[nodiscard]] const std::optional<PlatformKit::Path>& source() const { return source_; }
  /// The next four follow the source: the first at once, the others when they are known.
  [[nodiscard]] const std::string& sourceName() const { return sourceFacts_.name; }
  [[nodiscard]] const std::string& camera() const { return camera_; }
  [[nodiscard]] std::uint64_t sourceSize() const { return sourceCount_.bytes; }
  [[nodiscard]] std::size_t sourceFileCount() const { return sourceCount_.files; }
  [[nodiscard]] const SourceFacts& sourceFacts() const { return sourceFacts_; }

  [[nodiscard]] const std::vector<PlatformKit::Path>& destinations() const {
    return choices_.destinations;
  }
  /// None while it has not answered.
  [[nodiscard]] std::optional<DestinationFacts> destinationFacts(std::size_t index) const;

  [[nodiscard]] const OffloadKit::FolderPreset& preset() const { return choices_.preset; }
  [[nodiscard]] const std::string& project() const { return choices_.project; }
  [[nodiscard]] HashKit::HashAlgorithm algorithm() const { return choices_.algorithm; }
  [[nodiscard]] bool verifySource() const { return choices_.verifySource; }
  [[nodiscard]] bool ejectWhenDone() const { return choices_.ejectWhenDone; }
  [[nodiscard]] bool saveCardImage() const { return choices_.saveCardImage; }

  /// The last report of the offload that runs.
  [[nodiscard]] const std::optional<OffloadKit::OffloadProgress>& progress() const {
    return progress_;
  }
  /// The plan of the offload that runs, or ran last; empty before the first.
  [[nodiscard]] const OffloadKit::OffloadPlan& runPlan() const { return runPlan_; }
  /// The destinations as they were chosen for it.
  [[nodiscard]] const std::vector<PlatformKit::Path>& runDestinations() const {
    return runDestinations_;
  }
  /// Whether its source is still the one that is chosen and was never gone in between.
  [[nodiscard]] bool isSourceOfRun() const { return source_ && sourceNumber_ == runNumber_; }
  /// The names of the volumes that the offload that runs, or ran last, copies to, in order.
  [[nodiscard]] const std::vector<std::string>& driveNames() const { return driveNames_; }
  /// When that offload was started.
  [[nodiscard]] PlatformKit::Date startedAt() const { return startedAt_; }
  [[nodiscard]] PlatformKit::Date now() const { return services_.clock.now(); }
  /// Whether the offload that runs was asked to stop and has not ended yet.
  [[nodiscard]] bool isStopping() const { return isStopping_; }
  [[nodiscard]] bool isEjecting() const { return isEjecting_; }
  /// Whether the last ejecting was done.
  [[nodiscard]] bool isEjected() const { return isEjected_; }
  /// Why the card could not be ejected the last time, or that it was; empty when it was not tried.
  [[nodiscard]] const std::string& ejectMessage() const { return ejectMessage_; }

  /// The drives to offer: without the source and without those that hold a destination.
  [[nodiscard]] std::vector<DeviceKit::Volume> suggestedDrives() const;
  /// Whether there are destinations and all of them are on the computer's own disk.
  [[nodiscard]] bool onlyInternalCopies() const;
  /// The relative folder that copies go into, for now.
  [[nodiscard]] std::string folderName() const;
  /// One folder per destination, in their order.
  [[nodiscard]] std::vector<PlatformKit::Path> plannedFolders() const;
  /// The whole disk under the source, when that is a volume as a whole.
  [[nodiscard]] const std::optional<DeviceKit::WholeDisk>& cardDisk() const;
  /// Which destination would receive a card image.
  [[nodiscard]] std::optional<std::size_t> imageDestinationIndex() const;
  /// The card image's part of the plan, when one is wanted and possible.
  [[nodiscard]] std::optional<OffloadKit::CardImageRequest> imageRequest() const;
  /// Why the offload cannot start, in words to act on; none when it can.
  [[nodiscard]] std::optional<std::string> blocker() const;
  [[nodiscard]] int step() const;
  [[nodiscard]] std::string stepStatus() const;

  /// Each choice is saved.
  void setSource(std::optional<PlatformKit::Path> source);
  /// Ignored when there are three already or it is one of them.
  void addDestination(const PlatformKit::Path& destination);
  void removeDestination(const PlatformKit::Path& destination);
  /// Replaces all of them, however many.
  void setDestinations(std::vector<PlatformKit::Path> destinations);
  void setPreset(OffloadKit::FolderPreset preset);
  void setProject(std::string project);
  void setAlgorithm(HashKit::HashAlgorithm algorithm);
  void setVerifySource(bool verifySource);
  void setEjectWhenDone(bool ejectWhenDone);
  void setSaveCardImage(bool saveCardImage);

  /// Takes a folder that was dropped on the window, as the source or as a destination; whether it is
  /// a folder is asked in the background.
  void takeFolder(const PlatformKit::Path& path, bool asSource);

  /// Lists cards and drives anew, drops a source that is gone and, when none is chosen, takes the
  /// only card. The lists follow a moment later.
  void refreshVolumes();
  /// Starts the offload; does nothing when something blocks it.
  void start();
  /// Asks the offload that runs to stop at its next step; without one nothing happens.
  void cancel();
  /// Back to the setup screen, with all choices as they are.
  void showSetup();
  /// The same offload once more.
  void tryAgain();
  /// Ejects the disk under the volume in the background; `ejectMessage` tells how it went.
  void eject(const PlatformKit::Path& volume);

 signals:
  void stageChanged();
  void volumesChanged();
  void sourceChanged();
  void destinationsChanged();
  void optionsChanged();
  void progressChanged();
  void ejectChanged();

 private:
  void save();
  void followDestinations();
  void destinationsAnswered();
  void volumesListed(const VolumeBoard::Lists& lists);
  void refreshSourceInfo();
  void checkSourceFacts();
  void replaceDestinations(std::vector<PlatformKit::Path> destinations);
  [[nodiscard]] Readiness readiness() const;
  [[nodiscard]] OffloadKit::OffloadPlan plan() const;
  void setStage(Stage stage);
  void runInBackground(const OffloadKit::OffloadPlan& plan,
                       const std::optional<PlatformKit::Path>& ejectTarget);
  void progressed(OffloadKit::OffloadProgress progress);
  void finished(OffloadKit::OffloadResult result, const std::optional<PlatformKit::Path>& eject);
  void stopped();
  void failed(std::string message);
  void leaveRunning(Stage stage);

  Services services_;
  Stage stage_ = Stage::setup();
  Choices choices_;
  std::vector<PlatformKit::Path> unconfirmed_;  // saved destinations that may be gone

  std::vector<DeviceKit::Volume> cards_;
  std::vector<DeviceKit::Volume> drives_;
  std::optional<PlatformKit::Path> source_;
  // Counts the sources that were chosen, since another card can have the same path.
  int sourceNumber_ = 0;
  SourceFacts sourceFacts_;
  SourceCount sourceCount_;
  std::string camera_ = "Camera";

  std::shared_ptr<OffloadRunner> engine_;  // of the current or last offload
  std::thread run_;
  std::optional<OffloadKit::OffloadProgress> progress_;
  OffloadKit::OffloadPlan runPlan_;
  std::vector<PlatformKit::Path> runDestinations_;
  int runNumber_ = 0;
  std::vector<std::string> driveNames_;
  PlatformKit::Date startedAt_{};
  bool isStopping_ = false;
  bool isEjecting_ = false;
  bool isEjected_ = false;
  std::string ejectMessage_;

  Background background_;
  VolumeBoard volumeBoard_;
  DestinationBoard destinationBoard_;
};

}  // namespace ZephrimarkOffload
