#include "ZephrimarkUI/Setup.h"

#include <QtCore/QTemporaryDir>
#include <QtGui/QAccessible>
#include <QtGui/QGuiApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  const QTemporaryDir folder;
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("QT_QUICK_BACKEND", "software");
  for (const char* variable : {"XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"}) {
    qputenv(variable, folder.path().toUtf8());
  }
  const QGuiApplication application(argc, argv);
  ZephrimarkUI::prepareApplication();
  QAccessible::setActive(true);
  return RUN_ALL_TESTS();
}
