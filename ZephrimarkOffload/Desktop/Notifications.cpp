#include "ZephrimarkOffload/Desktop/Notifications.h"

#include "ZephrimarkOffload/Desktop/BusAnswer.h"

#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QStringList>
#include <QVariantMap>

namespace ZephrimarkOffload {
namespace {

const QString kApplication = QStringLiteral("com.zephrimark.offload");

QDBusMessage call(const QString& member) {
  const QString service = QStringLiteral("org.freedesktop.Notifications");
  return QDBusMessage::createMethodCall(service, QStringLiteral("/org/freedesktop/Notifications"),
                                        service, member);
}

QString withoutMarkup(QString text) {
  return text.replace(QLatin1Char('&'), QLatin1String("&amp;"))
      .replace(QLatin1Char('<'), QLatin1String("&lt;"))
      .replace(QLatin1Char('>'), QLatin1String("&gt;"));
}

}  // namespace

void Notifications::notify(const QString& title, const QString& body) {
  if (!session_.isConnected()) return;
  // Asked each time, since the service can have started or been replaced meanwhile.
  whenAnswered(session_.asyncCall(call(QStringLiteral("GetCapabilities"))), pending_,
               [this, title, body](const QDBusPendingCall& answer) {
                 const QDBusPendingReply<QStringList> capabilities = answer;
                 // A service that does not tell is taken for one without markup.
                 const bool markup = capabilities.isValid() &&
                                     capabilities.value().contains(QStringLiteral("body-markup"));
                 send(title, markup ? withoutMarkup(body) : body);
               });
}

void Notifications::send(const QString& title, const QString& body) {
  const QVariantMap hints{
      {QStringLiteral("desktop-entry"), kApplication},
      {QStringLiteral("category"), QStringLiteral("transfer.complete")},
      {QStringLiteral("urgency"), QVariant::fromValue(uchar{1})},
      {QStringLiteral("sound-name"), QStringLiteral("complete")},
  };
  QDBusMessage message = call(QStringLiteral("Notify"));
  message << QStringLiteral("Zephrimark Offload") << uint{0} << kApplication << title << body
          << QStringList() << hints << -1;
  // The answer is ignored on purpose: nobody can be told that a notification was not shown.
  static_cast<void>(session_.asyncCall(message));
}

}  // namespace ZephrimarkOffload
