#include "PlatformKit/Linux/LinuxFileSystem.h"
#include "ZephrimarkOffload/Desktop/SingleInstance.h"

#include <cstring>
#include <iostream>

#include <QCoreApplication>
#include <gtest/gtest.h>

namespace {

// The application as far as the tests of SingleInstance need it, in a process of its own: tells its
// role, and as the first every activation.
int runInstance() {
  using ZephrimarkOffload::SingleInstance;
  PlatformKit::LinuxFileSystem fileSystem;
  SingleInstance instance(fileSystem, ZephrimarkOffload::instanceFolder());
  QObject::connect(&instance, &SingleInstance::activationRequested, [](const QString& token) {
    std::cout << "activated " << token.toStdString() << std::endl;
  });
  if (instance.claim(ZephrimarkOffload::startActivationToken()) == SingleInstance::Role::second) {
    std::cout << (instance.acknowledged() ? "acknowledged" : "ignored") << std::endl;
    return 0;
  }
  std::cout << "first" << std::endl;
  return QCoreApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  if (argc == 2 && std::strcmp(argv[1], "--instance") == 0) return runInstance();
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
