#include "ZephrimarkUI/SystemLook.h"

#include <algorithm>
#include <iterator>

#include <QtCore/QEvent>
#include <QtGui/QFontDatabase>
#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>

namespace ZephrimarkUI {

namespace {

constexpr int kMiddleGrey = 128;
constexpr int kLeastSaturation = 64;

// The highlight colours Qt falls back to by itself: no choice of the user.
constexpr QRgb kBuiltInHighlights[] = {0xff000080, 0xff308cc6};

QString firstInstalled(const QStringList& families, QFontDatabase::SystemFont otherwise) {
  const QStringList installed = QFontDatabase::families();
  for (const QString& family : families) {
    if (installed.contains(family)) return family;
  }
  return QFontDatabase::systemFont(otherwise).family();
}

}  // namespace

QString textFamily() {
  return firstInstalled(
      {QStringLiteral("Inter"), QStringLiteral("Inter Variable"), QStringLiteral("Cantarell"),
       QStringLiteral("Noto Sans"), QStringLiteral("DejaVu Sans")},
      QFontDatabase::GeneralFont);
}

QString titleFamily() {
  const QString display = QStringLiteral("Inter Display");
  return QFontDatabase::hasFamily(display) ? display : textFamily();
}

QString monoFamily() {
  return firstInstalled({QStringLiteral("JetBrains Mono"), QStringLiteral("DejaVu Sans Mono"),
                         QStringLiteral("Noto Sans Mono"), QStringLiteral("Liberation Mono")},
                        QFontDatabase::FixedFont);
}

SystemLook::SystemLook(QObject* parent) : QObject(parent) {
  QCoreApplication::instance()->installEventFilter(this);
}

bool SystemLook::dark() const {
  return qGray(QGuiApplication::palette().color(QPalette::Window).rgb()) < kMiddleGrey;
}

QColor SystemLook::accent() const {
  const QColor highlight = QGuiApplication::palette().color(QPalette::Active, QPalette::Highlight);
  const bool builtIn = std::find(std::begin(kBuiltInHighlights), std::end(kBuiltInHighlights),
                                 highlight.rgb()) != std::end(kBuiltInHighlights);
  // A grey selection is a matter of the theme; as an accent it would look switched off.
  const bool chosen = !builtIn && highlight.hsvSaturation() >= kLeastSaturation;
  return chosen ? highlight : QColor(Qt::transparent);
}

bool SystemLook::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::ApplicationPaletteChange &&
      watched == QCoreApplication::instance()) {
    emit changed();
  }
  return QObject::eventFilter(watched, event);
}

}  // namespace ZephrimarkUI
