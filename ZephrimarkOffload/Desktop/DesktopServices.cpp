#include "ZephrimarkOffload/Desktop/DesktopServices.h"

namespace ZephrimarkOffload {

DesktopServices::DesktopServices(const QDBusConnection& session, const QDBusConnection& system)
    : notifications_(session), progress_(session), awake_(session, system) {}

void DesktopServices::notify(const QString& title, const QString& body) {
  notifications_.notify(title, body);
}

void DesktopServices::setBadge(std::optional<double> fraction) {
  progress_.set(fraction);
}

void DesktopServices::holdAwake(const QString& reason) {
  awake_.hold(reason);
}

void DesktopServices::releaseAwake() {
  awake_.release();
}

}  // namespace ZephrimarkOffload
