#pragma once

#include <functional>

#include <QDBusPendingCall>

class QObject;

namespace ZephrimarkOffload {

/// Calls `take` with the answer to `call`, an error included, from the event loop and once; not any
/// more when `owner` is gone by then. Owner's thread.
void whenAnswered(const QDBusPendingCall& call, QObject& owner,
                  std::function<void(const QDBusPendingCall&)> take);

}  // namespace ZephrimarkOffload
