#include "ZephrimarkOffload/Desktop/DesktopServices.h"

namespace ZephrimarkOffload {

DesktopServices::DesktopServices(const QDBusConnection& session, const QDBusConnection& system)
    : notifications_(session), progress_(session), sleep_(session, system) {}

void DesktopServices::notify(const QString& title, const QString& body) {
  notifications_.notify(title, body);
}

void DesktopServices::setBadge(std::optional<double> fraction) {
  progress_.set(fraction);
}

void DesktopServices::inhibitSleep(const QString& reason) {
  sleep_.inhibit(reason);
}

void DesktopServices::allowSleep() {
  sleep_.allow();
}

}  // namespace ZephrimarkOffload
