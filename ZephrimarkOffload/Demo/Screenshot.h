#pragma once

#include "ZephrimarkOffload/Demo/DemoWindow.h"

#include <QString>
#include <QTimer>

namespace ZephrimarkOffload::Demo {

/// Saves a picture of a window once its scene stands still, at the scale of the screen, and ends
/// the application: with 1 and a sentence on standard error when that does not work. Main thread.
class Screenshot final {
 public:
  /// The window outlives it.
  Screenshot(DemoWindow& demo, QString file);

 private:
  void look();
  [[nodiscard]] bool save();

  DemoWindow& demo_;
  const QString file_;
  QTimer again_;
  int looks_ = 0;
  int looksWhenReady_ = 0;
};

}  // namespace ZephrimarkOffload::Demo
