#include "ZephrimarkOffload/Desktop/BusAnswer.h"

#include <utility>

#include <QDBusPendingCallWatcher>

namespace ZephrimarkOffload {

void whenAnswered(const QDBusPendingCall& call, QObject& owner,
                  std::function<void(const QDBusPendingCall&)> take) {
  auto* const watcher = new QDBusPendingCallWatcher(call, &owner);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                   [take = std::move(take)](QDBusPendingCallWatcher* answered) {
                     answered->deleteLater();  // before: `take` may end the owner and with it this
                     take(*answered);
                   });
}

}  // namespace ZephrimarkOffload
