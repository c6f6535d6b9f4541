#include "tests/Desktop/MockBus.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace ZephrimarkOffload::Testing {

MockBus::MockBus() {
  const PlatformKit::Path config = folder_.path() / "bus.conf";
  PlatformKit::Testing::writeFile(
      config,
      "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\"\n"
      " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
      "<busconfig><type>session</type><listen>unix:path=" +
          (folder_.path() / "bus").native() +
          "</listen><policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
          "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>\n");
  daemon_.run(QStringLiteral("dbus-daemon"),
              {QStringLiteral("--config-file=") + QString::fromStdString(config.native()),
               QStringLiteral("--nofork"), QStringLiteral("--print-address=1")});
  const QString address = QString::fromUtf8(daemon_.line());
  for (const char* name : {"application", "services"}) {
    if (!QDBusConnection::connectToBus(address, QLatin1String(name)).isConnected()) {
      throw std::runtime_error("No connection to a bus at " + address.toStdString());
    }
  }
}

MockBus::~MockBus() {
  for (const char* name : {"application", "services"}) {
    QDBusConnection::disconnectFromBus(QLatin1String(name));
  }
}

MockServices::MockServices(const QDBusConnection& connection) : connection_(connection) {
  connection_.registerVirtualObject(QStringLiteral("/"), this, QDBusConnection::SubPath);
}

void MockServices::provide(const QString& service) {
  if (!connection_.registerService(service)) throw std::runtime_error(service.toStdString());
}

std::vector<QDBusMessage> MockServices::calls(const QString& member) const {
  std::vector<QDBusMessage> found;
  std::copy_if(messages_.begin(), messages_.end(), std::back_inserter(found),
               [&](const QDBusMessage& message) { return message.member() == member; });
  return found;
}

bool MockServices::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
  record(message);
  const auto found = answers.find(message.member());
  if (found == answers.end()) return false;
  const QDBusMessage reply = found->second(message);
  if (reply.type() != QDBusMessage::InvalidMessage) connection.send(reply);
  return true;
}

}  // namespace ZephrimarkOffload::Testing
