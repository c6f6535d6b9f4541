#include "ZephrimarkOffload/Desktop/SleepInhibitor.h"

#include "ZephrimarkOffload/Desktop/BusAnswer.h"

#include <utility>
#include <vector>

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QDBusUnixFileDescriptor>

namespace ZephrimarkOffload {
namespace {

const QString kApplication = QStringLiteral("Zephrimark Offload");

QDBusMessage sessionManagerCall(const QString& member) {
  const QString service = QStringLiteral("org.gnome.SessionManager");
  QDBusMessage message = QDBusMessage::createMethodCall(
      service, QStringLiteral("/org/gnome/SessionManager"), service, member);
  message.setAutoStartService(false);  // on another desktop it has no business
  return message;
}

void uninhibit(const QDBusConnection& session, uint cookie) {
  QDBusMessage message = sessionManagerCall(QStringLiteral("Uninhibit"));
  message << cookie;
  // Ignored on purpose: a session manager that is gone holds nothing either.
  static_cast<void>(session.asyncCall(message));
}

// Requests outlive the inhibitor, so that a grant that comes late can be given back.
QObject& requestOwner() {
  return *QCoreApplication::instance();
}

}  // namespace

// Everything that was granted; its end gives it back.
class SleepInhibitor::Grants {
 public:
  explicit Grants(QDBusConnection session) : session_(std::move(session)) {}
  ~Grants() {
    for (const uint cookie : cookies_) uninhibit(session_, cookie);
  }
  Grants(const Grants&) = delete;
  Grants& operator=(const Grants&) = delete;

  void add(uint cookie) { cookies_.push_back(cookie); }
  void add(const QDBusUnixFileDescriptor& descriptor) { descriptors_.push_back(descriptor); }

  static void askSessionManager(const std::shared_ptr<Grants>& grants, const QString& reason);

  // A refused "block" is asked for again as a delay when `orDelay`.
  static void askLogind(const std::weak_ptr<Grants>& grants, const QDBusConnection& system,
                        const QString& what, const QString& reason, bool block, bool orDelay);

 private:
  QDBusConnection session_;
  std::vector<uint> cookies_;
  std::vector<QDBusUnixFileDescriptor> descriptors_;  // logind waits until they are closed
};

void SleepInhibitor::Grants::askSessionManager(const std::shared_ptr<Grants>& grants,
                                               const QString& reason) {
  constexpr uint kNoWindow = 0;
  constexpr uint kLogout = 1;
  constexpr uint kSuspend = 4;
  const QDBusConnection session = grants->session_;
  QDBusMessage message = sessionManagerCall(QStringLiteral("Inhibit"));
  message << QStringLiteral("com.zephrimark.offload") << kNoWindow << reason
          << (kLogout | kSuspend);
  whenAnswered(session.asyncCall(message), requestOwner(),
               [session, held = std::weak_ptr(grants)](const QDBusPendingCall& answer) {
                 const QDBusPendingReply<uint> cookie = answer;
                 if (!cookie.isValid()) return;  // another desktop
                 if (const auto holding = held.lock()) {
                   holding->add(cookie.value());
                 } else {
                   uninhibit(session, cookie.value());
                 }
               });
}

void SleepInhibitor::Grants::askLogind(const std::weak_ptr<Grants>& grants,
                                       const QDBusConnection& system, const QString& what,
                                       const QString& reason, bool block, bool orDelay) {
  QDBusMessage message = QDBusMessage::createMethodCall(
      QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
      QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("Inhibit"));
  message << what << kApplication << reason
          << (block ? QStringLiteral("block") : QStringLiteral("delay"));
  whenAnswered(system.asyncCall(message), requestOwner(), [=](const QDBusPendingCall& answer) {
    const auto holding = grants.lock();
    if (!holding) return;  // allowed meanwhile; the descriptor is closed with the answer
    const QDBusPendingReply<QDBusUnixFileDescriptor> descriptor = answer;
    if (descriptor.isValid()) {
      holding->add(descriptor.value());
    } else if (orDelay) {
      askLogind(grants, system, what, reason, false, false);
    }
  });
}

SleepInhibitor::SleepInhibitor(const QDBusConnection& session, const QDBusConnection& system)
    : session_(session), system_(system) {}

SleepInhibitor::~SleepInhibitor() = default;

void SleepInhibitor::inhibit(const QString& reason) {
  if (grants_) return;
  grants_ = std::make_shared<Grants>(session_);
  if (session_.isConnected()) Grants::askSessionManager(grants_, reason);
  if (!system_.isConnected()) return;
  // Two requests, since a policy may allow the one and not the other.
  Grants::askLogind(grants_, system_, QStringLiteral("sleep:idle"), reason, true, false);
  Grants::askLogind(grants_, system_, QStringLiteral("shutdown"), reason, true, true);
}

void SleepInhibitor::allow() {
  grants_.reset();
}

}  // namespace ZephrimarkOffload
