#pragma once

#include "PlatformKit/FileSystem.h"

#include <memory>

#include <QByteArray>
#include <QLocalServer>
#include <QObject>
#include <QString>

class QDeadlineTimer;
class QLocalSocket;

namespace ZephrimarkOffload {

/// The folder of this user's lock and socket: in the runtime folder of the login, or under the
/// cache folder where there is none.
[[nodiscard]] PlatformKit::Path instanceFolder();

/// What the desktop gave this start so that its window may come to the front; may be empty. To be
/// asked before the QGuiApplication is made, which takes it out of the environment.
[[nodiscard]] QString startActivationToken();

/// Lets one instance of the application run per user: the first locks a folder and listens on a
/// socket in it, a second start asks it to come to the front. Needs no bus. The lock goes with the
/// process, so one that crashed is in nobody's way. Main thread.
class SingleInstance : public QObject {
  Q_OBJECT

 public:
  enum class Role {
    first,   ///< run
    second,  ///< another instance runs: end
  };

  /// Everybody else is kept out of `folder`, which is made when it is missing. `fileSystem`
  /// outlives this object.
  SingleInstance(PlatformKit::FileSystem& fileSystem, PlatformKit::Path folder);

  /// Finds out which role this start has, once; to be asked before there is a window. Where the
  /// folder cannot be made or locked, every start is the first. As the second it hands
  /// `activationToken` on and blocks until the first acknowledges, two seconds at most. A token
  /// with control characters or of more than 4,000 bytes is left out.
  [[nodiscard]] Role claim(const QString& activationToken);

  /// As the second: whether the first acknowledged. If not, it hangs or cannot be reached.
  [[nodiscard]] bool acknowledged() const { return acknowledged_; }

 Q_SIGNALS:
  /// As the first: the application was started again and its window is to come to the front. The
  /// token is of that start and may be empty. Needs a running event loop.
  void activationRequested(const QString& activationToken);

 private:
  void makeFolder() const;
  void listen();
  void accept();
  void answer(QLocalSocket& socket);
  [[nodiscard]] bool askFirst(const QByteArray& request, const QDeadlineTimer& patience) const;

  PlatformKit::FileSystem& fileSystem_;
  PlatformKit::Path folder_;
  QString socketName_;
  bool acknowledged_ = false;
  std::unique_ptr<PlatformKit::FolderLock> lock_;
  QLocalServer server_;  // behind the lock: its end removes the socket, which only the holder may
};

}  // namespace ZephrimarkOffload
