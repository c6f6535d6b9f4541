#include "ZephrimarkUI/Setup.h"

#include "ZephrimarkUI/IconProvider.h"
#include "ZephrimarkUI/SystemLook.h"

#include <QtGui/QFont>
#include <QtGui/QGuiApplication>
#include <QtQml/QQmlEngine>
#include <QtQml/QQmlExtensionPlugin>
#include <QtQuick/QQuickWindow>
#include <QtQuickControls2/QQuickStyle>

// Outside of any namespace, as the macro demands: a static plugin is only linked when it is named.
Q_IMPORT_QML_PLUGIN(ZephrimarkUIPlugin)

namespace ZephrimarkUI {

void prepareApplication() {
  QQuickStyle::setStyle(QStringLiteral("Basic"));
  QQuickWindow::setTextRenderType(QQuickWindow::NativeTextRendering);
  QFont font = QGuiApplication::font();
  font.setFamily(textFamily());
  QGuiApplication::setFont(font);
}

void prepareEngine(QQmlEngine& engine) {
  engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
  engine.addImageProvider(QStringLiteral("icon"), new IconProvider);  // the engine owns it
}

QImage applicationImage(int edge) {
  return IconProvider().requestImage(QStringLiteral("appicon/000000"), nullptr, {edge, edge});
}

QIcon applicationIcon() {
  QIcon icon;
  for (const int edge : {16, 22, 24, 32, 48, 64, 128, 256}) {
    icon.addPixmap(QPixmap::fromImage(applicationImage(edge)));
  }
  return icon;
}

}  // namespace ZephrimarkUI
