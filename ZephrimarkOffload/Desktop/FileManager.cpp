#include "ZephrimarkOffload/Desktop/FileManager.h"

#include "ZephrimarkOffload/Desktop/BusAnswer.h"

#include <system_error>
#include <utility>

#include <QDBusMessage>
#include <QStringList>

namespace ZephrimarkOffload {
namespace {

// Encodes the bytes of the name as they are, whether they are UTF-8 or not.
QByteArray uriOf(const PlatformKit::Path& path) {
  return "file://" + QByteArray::fromStdString(path.native()).toPercentEncoding("/");
}

PlatformKit::Path absoluteItem(const PlatformKit::Path& item) {
  std::error_code error;
  PlatformKit::Path path = std::filesystem::absolute(item, error);
  // Without a current folder the path stays relative, and the file manager says that it is wrong.
  if (error) path = item;
  return path.has_filename() ? path : path.parent_path();
}

}  // namespace

FileManager::FileManager(const QDBusConnection& session, OpenFolder openFolder)
    : session_(session), openFolder_(std::move(openFolder)) {}

void FileManager::reveal(const PlatformKit::Path& item) {
  const PlatformKit::Path path = absoluteItem(item);
  const QUrl folder = QUrl::fromEncoded(uriOf(path.parent_path()));
  if (!session_.isConnected()) {
    openFolder_(folder);
    return;
  }
  QDBusMessage message = QDBusMessage::createMethodCall(
      QStringLiteral("org.freedesktop.FileManager1"),
      QStringLiteral("/org/freedesktop/FileManager1"),
      QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
  message << QStringList{QString::fromLatin1(uriOf(path))} << QString();
  whenAnswered(session_.asyncCall(message), pending_,
               [this, folder](const QDBusPendingCall& answer) {
                 if (answer.isError()) openFolder_(folder);
               });
}

}  // namespace ZephrimarkOffload
