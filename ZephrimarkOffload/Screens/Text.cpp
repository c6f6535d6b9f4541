#include "ZephrimarkOffload/Screens/Text.h"

namespace ZephrimarkOffload {

PlatformKit::Path pathOf(const QUrl& url) {
  if (!url.isLocalFile()) return {};
  return QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()).toStdString();
}

QUrl urlOf(const PlatformKit::Path& path) {
  return QUrl::fromEncoded("file://" + keyOf(path).toPercentEncoding("/"));
}

}  // namespace ZephrimarkOffload
