#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>

namespace ZephrimarkOffload {

/// Notifications of the desktop (org.freedesktop.Notifications). Main thread; nothing blocks, and
/// where the bus or the service is missing nothing happens.
class Notifications {
 public:
  /// The connection is to the session bus.
  explicit Notifications(const QDBusConnection& session) : session_(session) {}

  /// Shows a notification with the sound for a finished task, in the order of the calls. Plain
  /// text: what would be markup to the service is shown as it stands.
  void notify(const QString& title, const QString& body);

 private:
  void send(const QString& title, const QString& body);

  QDBusConnection session_;
  QObject pending_;  // owns the questions that are not answered yet
};

}  // namespace ZephrimarkOffload
