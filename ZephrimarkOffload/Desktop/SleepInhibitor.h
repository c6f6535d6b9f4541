#pragma once

#include <memory>

#include <QDBusConnection>
#include <QString>

namespace ZephrimarkOffload {

/// Asks the computer not to sleep and a logout or shutdown to wait. Main thread, beside a
/// QCoreApplication; nothing blocks, and each service that is missing or says no is done without.
///
/// - logind, system bus: no sleep, no idling and no shutdown; where the policy does not allow the
///   last, a delay of the few seconds that logind grants.
/// - GNOME's session manager, session bus: no logout and no suspend, which it would otherwise start
///   on its own. The screen may go dark and lock.
class SleepInhibitor {
 public:
  SleepInhibitor(const QDBusConnection& session, const QDBusConnection& system);
  /// As `allow`.
  ~SleepInhibitor();
  SleepInhibitor(const SleepInhibitor&) = delete;
  SleepInhibitor& operator=(const SleepInhibitor&) = delete;

  /// From now on; `reason` is shown to the user. A second call changes nothing.
  void inhibit(const QString& reason);

  /// Takes that back; what is granted later is given back at once. Nothing happens when nothing is
  /// inhibited.
  void allow();

 private:
  class Grants;

  QDBusConnection session_;
  QDBusConnection system_;
  std::shared_ptr<Grants> grants_;  // requests under way know it weakly
};

}  // namespace ZephrimarkOffload
