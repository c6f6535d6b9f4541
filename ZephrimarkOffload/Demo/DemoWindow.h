#pragma once

#include "ZephrimarkOffload/Demo/DemoClock.h"
#include "ZephrimarkOffload/Demo/QuietDesktop.h"
#include "ZephrimarkOffload/Demo/Scenes.h"
#include "ZephrimarkOffload/Model/OffloadModel.h"
#include "ZephrimarkOffload/Screens/OffloadWindow.h"

#include <memory>
#include <optional>

#include <QSize>
#include <QTemporaryDir>
#include <QTimer>

namespace ZephrimarkOffload::Demo {

/// The application's own window on a scene. It plays the scene by itself while the event loop runs.
/// Main thread.
class DemoWindow final {
 public:
  struct Options {
    std::optional<QSize> size;
    DonePresenter::PathAction reveal = [](const PlatformKit::Path&) {};
    DonePresenter::PathAction open = [](const PlatformKit::Path&) {};
  };

  explicit DemoWindow(Scene scene, Options options);

  /// False when the window could not be made.
  [[nodiscard]] bool isShown() const { return window_->isShown(); }
  /// Whether the model and the dialogs are where the scene wants them. What the window shows of
  /// that can still be moving for a moment.
  [[nodiscard]] bool isReady() const { return isReady_; }
  [[nodiscard]] OffloadModel& model() { return *model_; }
  [[nodiscard]] QQuickWindow& window() { return *window_->window(); }

  /// In place of what the desktop says.
  void setDark(bool dark);

 private:
  void advance();
  [[nodiscard]] bool isAnswered() const;
  [[nodiscard]] bool isDialogOpen();

  Scene scene_;
  QTemporaryDir folder_;
  Settings settings_;
  DemoClock clock_;
  QuietDesktop desktop_;
  std::shared_ptr<ScriptedDisks> disks_;
  std::unique_ptr<OffloadModel> model_;
  UpdatePresenter updates_;
  std::unique_ptr<OffloadWindow> window_;
  QTimer steps_;
  bool isStarted_ = false;
  bool isReady_ = false;
};

}  // namespace ZephrimarkOffload::Demo
