#pragma once

#include "PlatformKit/Testing/TempFolder.h"
#include "tests/Desktop/Process.h"

#include <functional>
#include <map>
#include <vector>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>

namespace ZephrimarkOffload::Testing {

/// A bus of its own, on which nothing is started by itself.
class MockBus {
 public:
  /// Throws std::runtime_error when it does not start.
  MockBus();
  ~MockBus();
  MockBus(const MockBus&) = delete;
  MockBus& operator=(const MockBus&) = delete;

  QDBusConnection application() const { return QDBusConnection(QStringLiteral("application")); }
  QDBusConnection services() const { return QDBusConnection(QStringLiteral("services")); }

 private:
  const PlatformKit::Testing::TempFolder folder_;
  Process daemon_;
};

/// All services of a desktop in one: keeps what it is called with, and answers as told.
class MockServices : public QDBusVirtualObject {
  Q_OBJECT

 public:
  /// What a method answers; an invalid message is no answer yet.
  using Answer = std::function<QDBusMessage(const QDBusMessage&)>;

  explicit MockServices(const QDBusConnection& connection);

  void provide(const QString& service);
  /// The calls of a method so far, and the signals of that name.
  std::vector<QDBusMessage> calls(const QString& member) const;
  void answer(const QDBusMessage& reply) { connection_.send(reply); }

  std::map<QString, Answer> answers;

  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;
  QString introspect(const QString& /*path*/) const override { return {}; }

  Q_SLOT void record(const QDBusMessage& message) { messages_.push_back(message); }

 private:
  QDBusConnection connection_;
  std::vector<QDBusMessage> messages_;
};

}  // namespace ZephrimarkOffload::Testing
