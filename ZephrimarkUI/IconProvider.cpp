#include "ZephrimarkUI/IconProvider.h"

#include <algorithm>

#include <QtCore/QFile>
#include <QtGui/QColor>
#include <QtGui/QPainter>
#include <QtSvg/QSvgRenderer>

namespace ZephrimarkUI {

namespace {

constexpr int kDefaultEdge = 24;
constexpr int kLargestSmallEdge = 32;

QString drawingOf(const QString& name, int edge) {
  const QString path = QStringLiteral(":/qt/qml/ZephrimarkUI/icons/%1%2.svg");
  const QString small = path.arg(name, QStringLiteral(".small"));
  return edge <= kLargestSmallEdge && QFile::exists(small) ? small : path.arg(name, QString());
}

}  // namespace

QImage IconProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize) {
  const QString name = id.section(u'/', 0, 0);
  const QColor color(u'#' + id.section(u'/', 1, 1));
  const int width = requestedSize.width() > 0 ? requestedSize.width() : kDefaultEdge;
  const int height = requestedSize.height() > 0 ? requestedSize.height() : width;
  QFile file(drawingOf(name, std::max(width, height)));
  if (!color.isValid() || !file.open(QIODevice::ReadOnly)) return {};

  // The drawing has no notion of half transparent colours, so the alpha goes over the whole of it.
  QSvgRenderer drawing(
      file.readAll().replace("currentColor", color.name(QColor::HexRgb).toLatin1()));
  QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setOpacity(color.alphaF());
  drawing.render(&painter);
  painter.end();
  if (size != nullptr) *size = image.size();
  return image;
}

}  // namespace ZephrimarkUI
