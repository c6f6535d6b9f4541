#include "ZephrimarkOffload/Desktop/SingleInstance.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <system_error>
#include <thread>
#include <utility>

#include <QDeadlineTimer>
#include <QFile>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QTimer>

namespace ZephrimarkOffload {
namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 2s;
constexpr auto kBetweenTries = 20ms;
// Of one line. Tokens have some dozens of bytes.
constexpr qsizetype kLongestRequest = 4096;
constexpr qsizetype kMostConnections = 16;

const QByteArray kRequest = QByteArrayLiteral("activate ");
const QByteArray kAcknowledgement = QByteArrayLiteral("ok\n");

bool isPrintable(const QString& text) {
  return std::all_of(text.begin(), text.end(), [](QChar character) { return character.isPrint(); });
}

// A token that does not fit into the request is left out: coming to the front is asked for anyway.
QByteArray requestFor(const QString& activationToken) {
  const QByteArray token = isPrintable(activationToken) ? activationToken.toUtf8() : QByteArray();
  const QByteArray request = kRequest + token + '\n';
  return request.size() < kLongestRequest ? request : kRequest + '\n';
}

int millisecondsLeft(const QDeadlineTimer& patience) {
  return static_cast<int>(patience.remainingTime());
}

}  // namespace

PlatformKit::Path instanceFolder() {
  QString parent = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
  if (parent.isEmpty()) {
    parent = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
  }
  return PlatformKit::Path(QFile::encodeName(parent).toStdString()) / "zephrimark-offload";
}

QString startActivationToken() {
  return qEnvironmentVariable("XDG_ACTIVATION_TOKEN", qEnvironmentVariable("DESKTOP_STARTUP_ID"));
}

SingleInstance::SingleInstance(PlatformKit::FileSystem& fileSystem, PlatformKit::Path folder)
    : fileSystem_(fileSystem),
      folder_(std::move(folder)),
      socketName_(QFile::decodeName(QByteArray::fromStdString((folder_ / "socket").native()))) {
  QObject::connect(&server_, &QLocalServer::newConnection, this, &SingleInstance::accept);
}

SingleInstance::Role SingleInstance::claim(const QString& activationToken) {
  makeFolder();
  const QByteArray request = requestFor(activationToken);
  // The first may just be starting and not listen yet, or just be ending and free the lock soon: so
  // both are tried until the time is over.
  const QDeadlineTimer patience(kPatience);
  for (;;) {
    auto locked = fileSystem_.lockFolder(folder_);
    if (locked.ok()) {
      lock_ = std::move(locked.value());
      listen();
      return Role::first;
    }
    // Two instances are a smaller evil than none.
    if (locked.error() != EWOULDBLOCK) return Role::first;
    acknowledged_ = askFirst(request, patience);
    if (acknowledged_ || patience.hasExpired()) return Role::second;
    std::this_thread::sleep_for(kBetweenTries);
  }
}

void SingleInstance::makeFolder() const {
  // Errors are ignored on purpose: locking the folder tells whether it can be used.
  std::error_code ignored;
  std::filesystem::create_directories(folder_, ignored);
  std::filesystem::permissions(folder_, std::filesystem::perms::owner_all, ignored);
}

void SingleInstance::listen() {
  // What is there was left by one that crashed, since this process holds the lock.
  QLocalServer::removeServer(socketName_);
  server_.setSocketOptions(QLocalServer::UserAccessOption);
  // Ignored on purpose: without the socket another start still ends, it just cannot call this one.
  static_cast<void>(server_.listen(socketName_));
}

void SingleInstance::accept() {
  while (QLocalSocket* const socket = server_.nextPendingConnection()) {
    QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    QObject::connect(socket, &QLocalSocket::readyRead, this, [this, socket] { answer(*socket); });
    auto* const patience = new QTimer(socket);
    QObject::connect(patience, &QTimer::timeout, socket, &QLocalSocket::abort);
    patience->start(kPatience);
    socket->setReadBufferSize(kLongestRequest);
    if (server_.findChildren<QLocalSocket*>().size() > kMostConnections) {
      socket->abort();
    } else {
      answer(*socket);
    }
  }
}

void SingleInstance::answer(QLocalSocket& socket) {
  if (socket.state() != QLocalSocket::ConnectedState) return;
  if (!socket.canReadLine()) {
    if (socket.bytesAvailable() >= kLongestRequest) socket.abort();
    return;
  }
  QByteArray line = socket.readLine();
  line.chop(1);
  const QString token = QString::fromUtf8(line.mid(kRequest.size()));
  if (!line.startsWith(kRequest) || !isPrintable(token)) {
    socket.abort();
    return;
  }
  socket.write(kAcknowledgement);
  socket.disconnectFromServer();
  Q_EMIT activationRequested(token);
}

bool SingleInstance::askFirst(const QByteArray& request, const QDeadlineTimer& patience) const {
  QLocalSocket socket;
  socket.setReadBufferSize(kLongestRequest);
  socket.connectToServer(socketName_);
  if (!socket.waitForConnected(millisecondsLeft(patience))) return false;
  socket.write(request);
  while (!socket.canReadLine()) {
    if (patience.hasExpired() || !socket.waitForReadyRead(millisecondsLeft(patience))) return false;
  }
  return socket.readLine() == kAcknowledgement;
}

}  // namespace ZephrimarkOffload
