#pragma once

#include <QtGui/QColor>
#include <QtQml/qqmlregistration.h>
#include <QtQuick/QQuickPaintedItem>

namespace ZephrimarkUI {

/// An opaque gradient from the top left corner to the bottom right one. Its steps are finer than
/// the 256 levels of a screen can show: a fine pattern of neighbouring levels keeps them from
/// standing out as bands, which two colours as close as those of a tinted background otherwise do.
///
/// It is drawn when its size or a colour changes and kept as a picture in between.
class DitheredGradient : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT
  /// The colours of the top left corner and of the bottom right one; what they have of transparency
  /// is ignored.
  Q_PROPERTY(QColor from READ from WRITE setFrom NOTIFY colorsChanged FINAL)
  Q_PROPERTY(QColor to READ to WRITE setTo NOTIFY colorsChanged FINAL)

 public:
  explicit DitheredGradient(QQuickItem* parent = nullptr);

  [[nodiscard]] QColor from() const { return from_; }
  void setFrom(const QColor& color);
  [[nodiscard]] QColor to() const { return to_; }
  void setTo(const QColor& color);

  void paint(QPainter* painter) override;

 signals:
  /// One of the two colours is another; not sent when the same is set again.
  void colorsChanged();

 private:
  QColor from_ = Qt::white;
  QColor to_ = Qt::white;
};

}  // namespace ZephrimarkUI
