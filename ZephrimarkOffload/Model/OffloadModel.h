#pragma once

#include "PlatformKit/VolumeWatcher.h"
#include "ZephrimarkOffload/Model/Background.h"
#include "ZephrimarkOffload/Model/CardEjection.h"
#include "ZephrimarkOffload/Model/Desktop.h"
#include "ZephrimarkOffload/Model/OffloadRunner.h"
#include "ZephrimarkOffload/Model/OffloadSetup.h"
#include "ZephrimarkOffload/Model/Run.h"
#include "ZephrimarkOffload/Model/Settings.h"
#include "ZephrimarkOffload/Model/Stage.h"
#include "ZephrimarkOffload/Model/StepTexts.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <QObject>

namespace ZephrimarkOffload {

/// The application's state behind its screens: the choices for the next offload, the offload that
/// runs or has ended, and the ejecting of cards; and what leads from one to the other. Tells the
/// desktop how the offload goes. Everything on the main thread; no call waits for a disk.
class OffloadModel final : public QObject {
  Q_OBJECT

 public:
  /// What it works with; all but the shared ones outlive it.
  struct Services {
    std::shared_ptr<DiskQueries> disks;
    PlatformKit::VolumeWatcher& watcher;
    Desktop& desktop;
    Settings& settings;
    const PlatformKit::Clock& clock;
    std::function<std::unique_ptr<OffloadRunner>()> makeRunner;
  };

  /// Makes the setup, which begins to list the volumes.
  explicit OffloadModel(Services services);
  /// Stops an offload that runs and waits for it.
  ~OffloadModel() override;

  [[nodiscard]] OffloadSetup& setup() { return setup_; }
  [[nodiscard]] const OffloadSetup& setup() const { return setup_; }
  [[nodiscard]] const CardEjection& ejection() const { return ejection_; }
  /// The offload that runs or whose end is shown; null while the next one is being chosen. A screen
  /// that goes on showing it keeps it.
  [[nodiscard]] std::shared_ptr<const Run> run() const { return run_; }
  /// That of the run; Choosing without one.
  [[nodiscard]] const Stage& stage() const;
  /// Whether the source of `run` is still the one that is chosen and was never gone in between.
  [[nodiscard]] bool isSourceOf(const Run& run) const;
  [[nodiscard]] PlatformKit::Date now() const { return services_.clock.now(); }

  /// Why the next offload cannot start, in words to act on; none when it can.
  [[nodiscard]] std::optional<std::string> blocker() const;
  /// Where the user is; see StepTexts.h.
  [[nodiscard]] int step() const;
  [[nodiscard]] std::string stepStatus() const;

  /// Takes a folder that was dropped on the window, as the source or as a destination. Whether it
  /// is a folder is asked in the background; it is taken only while the next offload is being
  /// chosen.
  void takeFolder(const PlatformKit::Path& path, bool asSource);
  /// Starts an offload of what is chosen; does nothing while one runs or something blocks it.
  void start();
  /// Asks the offload that runs to stop at its next step; without one nothing happens.
  void cancel();
  /// Back to the setup screen, with all choices as they are; not while an offload runs.
  void showSetup();
  /// The same offload once more, or the setup screen when its source is not the one that is chosen.
  void tryAgain();
  /// Ejects the disk under the volume in the background; `ejection` tells how it went.
  void eject(const PlatformKit::Path& volume);

 signals:
  /// `stage` is another one, and so `run` may be.
  void stageChanged();
  /// The offload that runs has another report, or was asked to stop.
  void progressChanged();

 private:
  void showProgress();
  void finish();
  [[nodiscard]] StepFacts stepFacts() const;

  Services services_;
  Background background_;
  OffloadSetup setup_;
  CardEjection ejection_;
  std::shared_ptr<Run> run_;
};

}  // namespace ZephrimarkOffload
