#pragma once

#include <optional>

#include <QDBusConnection>
#include <QTimer>

namespace ZephrimarkOffload {

/// Progress on the application's icon in docks and task bars that listen to
/// com.canonical.Unity.LauncherEntry. Main thread; nothing blocks, and without a bus nothing
/// happens.
class LauncherProgress {
 public:
  /// The connection is to the session bus.
  explicit LauncherProgress(const QDBusConnection& session);
  /// Takes the progress away.
  ~LauncherProgress();
  LauncherProgress(const LauncherProgress&) = delete;
  LauncherProgress& operator=(const LauncherProgress&) = delete;

  /// Shows a fraction up to 1; none, 0 and less take the progress away, at once. Of fractions that
  /// come faster than five a second some are left out, but never the last.
  void set(std::optional<double> fraction);

 private:
  void send();

  QDBusConnection session_;
  std::optional<double> wanted_;
  std::optional<double> shown_;
  QTimer pause_;
};

}  // namespace ZephrimarkOffload
