#pragma once

#include "ZephrimarkOffload/Desktop/LauncherProgress.h"
#include "ZephrimarkOffload/Desktop/Notifications.h"
#include "ZephrimarkOffload/Desktop/SleepInhibitor.h"
#include "ZephrimarkOffload/Model/Desktop.h"

namespace ZephrimarkOffload {

/// The desktop's services over D-Bus. Its end takes the progress from the icon and lets the
/// computer sleep. Main thread, beside a QCoreApplication.
class DesktopServices final : public Desktop {
 public:
  /// Usually QDBusConnection::sessionBus() and systemBus(). Asking for those connects to a socket
  /// on this machine and waits for the greeting of the bus; everything later is asynchronous.
  DesktopServices(const QDBusConnection& session, const QDBusConnection& system);

  /// Does nothing: no desktop on Linux wants to be asked.
  void requestNotificationPermission() override {}
  /// As Notifications::notify.
  void notify(const QString& title, const QString& body) override;
  /// As LauncherProgress::set.
  void setBadge(std::optional<double> fraction) override;
  /// As SleepInhibitor::inhibit and allow.
  void inhibitSleep(const QString& reason) override;
  void allowSleep() override;

 private:
  Notifications notifications_;
  LauncherProgress progress_;
  SleepInhibitor sleep_;
};

}  // namespace ZephrimarkOffload
