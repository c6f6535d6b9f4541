#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtGui/QColor>
#include <QtQml/qqmlregistration.h>

namespace ZephrimarkUI {

/// The family for running text: Inter, or the best of what is installed. Main thread, after the
/// QGuiApplication is made; so are the other two.
QString textFamily();

/// The same for titles, drawn a little tighter where there is such a cut.
QString titleFamily();

/// A family whose letters are all equally wide.
QString monoFamily();

/// What the desktop says about looks. Follows a change of its palette at once. Main thread.
class SystemLook final : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON
  /// Whether windows of this desktop are dark.
  Q_PROPERTY(bool dark READ dark NOTIFY changed FINAL)
  /// The accent colour the user chose for the desktop; fully transparent when it names none.
  Q_PROPERTY(QColor accent READ accent NOTIFY changed FINAL)
  /// As the functions above; they do not change while the program runs.
  Q_PROPERTY(QString textFamily READ textFamily CONSTANT FINAL)
  Q_PROPERTY(QString titleFamily READ titleFamily CONSTANT FINAL)
  Q_PROPERTY(QString monoFamily READ monoFamily CONSTANT FINAL)

 public:
  explicit SystemLook(QObject* parent = nullptr);

  [[nodiscard]] bool dark() const;
  [[nodiscard]] QColor accent() const;
  [[nodiscard]] QString textFamily() const { return ZephrimarkUI::textFamily(); }
  [[nodiscard]] QString titleFamily() const { return ZephrimarkUI::titleFamily(); }
  [[nodiscard]] QString monoFamily() const { return ZephrimarkUI::monoFamily(); }

 signals:
  /// The desktop changed its palette. What was read before may be the same.
  void changed();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace ZephrimarkUI
