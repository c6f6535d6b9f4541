#pragma once

#include <memory>

#include <QtCore/QStringList>
#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>
#include <gtest/gtest.h>

/// The gallery in a window without a screen, for one test. Warnings of Qt and QML fail the test.
class UiTest : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  /// What `text` declares, imports included; null with a failure when it has errors.
  std::unique_ptr<QObject> make(const QString& text);
  /// The value of a QML expression over the module, such as "Brand.text".
  QVariant value(const QString& expression);

  void show();
  [[nodiscard]] QQuickItem* item(const QString& name) const;
  void focus(QQuickItem* item);
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);

  std::unique_ptr<QQmlEngine> engine_;
  std::unique_ptr<QObject> root_;
  QQuickWindow* window_ = nullptr;
};
