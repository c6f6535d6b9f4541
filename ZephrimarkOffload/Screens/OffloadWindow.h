#pragma once

#include "ZephrimarkOffload/Model/Settings.h"
#include "ZephrimarkOffload/Screens/Shell.h"
#include "ZephrimarkOffload/Screens/UpdatePresenter.h"

#include <QPointer>
#include <QQmlApplicationEngine>
#include <QQuickWindow>

namespace ZephrimarkOffload {

/// The application's window on a model: the screens, made from QML, and the presenters behind them.
/// Closing it ends the application unless an offload runs, after which it asks. Main thread, after
/// ZephrimarkUI::prepareApplication.
class OffloadWindow final {
 public:
  /// What the window uses besides the model; all outlive it.
  struct Surroundings {
    Settings& settings;  ///< keeps its size
    UpdatePresenter& updates;
    PlatformKit::Path home;            ///< the user's home folder
    DonePresenter::PathAction reveal;  ///< shows an item in the file manager
    DonePresenter::PathAction open;    ///< opens a file with its application
  };

  /// Makes the window and shows it. `isShown` tells whether that worked.
  OffloadWindow(OffloadModel& model, Surroundings surroundings);
  /// Keeps the size of the window for the next time.
  ~OffloadWindow();
  OffloadWindow(const OffloadWindow&) = delete;
  OffloadWindow& operator=(const OffloadWindow&) = delete;

  [[nodiscard]] bool isShown() const { return !window_.isNull(); }
  /// Owned by this object; null when it could not be made.
  [[nodiscard]] QQuickWindow* window() const { return window_; }

  /// Brings the window to the front. `activationToken`: what the desktop gave whoever wants that;
  /// may be empty.
  void raise(const QString& activationToken);

 private:
  Settings& settings_;
  Shell shell_;
  QQmlApplicationEngine engine_;
  QPointer<QQuickWindow> window_;
  QSize size_;
};

}  // namespace ZephrimarkOffload
