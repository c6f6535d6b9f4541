#pragma once

#include <optional>

#include <QString>

namespace ZephrimarkOffload {

/// What the application asks of the desktop it runs on. Every call returns at once, and none fails:
/// a desktop that lacks the service does nothing. Main thread.
class Desktop {
 public:
  virtual ~Desktop() = default;

  /// Asks whether notifications may be shown, where the system wants that.
  virtual void requestNotificationPermission() = 0;

  /// Shows a notification with the default sound. Plain text.
  virtual void notify(const QString& title, const QString& body) = 0;

  /// Shows progress (0 to 1) on the application's icon; none takes it away.
  virtual void setBadge(std::optional<double> fraction) = 0;

  /// From now on the computer is asked to stay awake, and a logout or shutdown to wait; `reason` is
  /// shown to the user. A second call changes nothing.
  virtual void inhibitSleep(const QString& reason) = 0;

  /// Takes that back; without it nothing happens.
  virtual void allowSleep() = 0;
};

}  // namespace ZephrimarkOffload
