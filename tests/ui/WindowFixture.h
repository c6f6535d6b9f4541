#pragma once

#include "ZephrimarkOffload/Demo/DemoWindow.h"

#include <functional>
#include <memory>
#include <vector>

#include <QtCore/QStringList>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>
#include <gtest/gtest.h>

/// The application's own window on made-up disks, without a screen. Warnings of Qt and QML fail the
/// test.
class WindowTest : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  /// Opens the window on a scene, or on a changed one, and waits until it shows that.
  void open(const std::string& scene, QSize size = {820, 840});
  void open(ZephrimarkOffload::Demo::Scene scene, QSize size = {820, 840});

  /// Whatever is visible, from the window's root, those below an invisible item left out.
  [[nodiscard]] std::vector<QQuickItem*> items() const;
  /// Of all visible items that have one.
  [[nodiscard]] QStringList texts() const;
  /// Waits until a visible text is, or none is any more.
  [[nodiscard]] bool shows(const QString& text) const;
  [[nodiscard]] bool hides(const QString& text) const;
  /// The visible control whose accessible name begins so; null when there is none.
  [[nodiscard]] QQuickItem* control(const QString& name) const;
  static QString nameOf(QObject* object);

  /// Scrolls to the control, waits until it can be pressed, and does that.
  void click(const QString& name);
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
  void type(const QString& text);

  ZephrimarkOffload::OffloadModel& model() { return demo_->model(); }
  QQuickWindow& window() { return demo_->window(); }

  std::unique_ptr<ZephrimarkOffload::Demo::DemoWindow> demo_;
  std::vector<PlatformKit::Path> revealed_;
  std::vector<PlatformKit::Path> opened_;
};
