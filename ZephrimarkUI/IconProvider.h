#pragma once

#include <QtQuick/QQuickImageProvider>

namespace ZephrimarkUI {

/// Draws the icons of this module: "image://icon/NAME/COLOR", where NAME is a file of icons/
/// without its ending and COLOR is RRGGBB or AARRGGBB. The requested size is in pixels of the
/// device; without one an icon is 24 x 24. Up to 32 pixels the drawing is NAME.small when there is
/// one. An unknown name or colour gives no image, which the engine reports.
///
/// Any thread, several at once.
class IconProvider final : public QQuickImageProvider {
 public:
  IconProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}

  QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;
};

}  // namespace ZephrimarkUI
