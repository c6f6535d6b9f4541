#include "Translations/Language.h"
#include "ZephrimarkOffload/Demo/DemoArguments.h"
#include "ZephrimarkOffload/Demo/DemoWindow.h"
#include "ZephrimarkOffload/Demo/Screenshot.h"
#include "ZephrimarkUI/Setup.h"

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <QGuiApplication>

namespace {

namespace Demo = ZephrimarkOffload::Demo;

int run(const QGuiApplication& application, const Demo::DemoArguments& arguments) {
  Demo::DemoWindow::Options options;
  options.size = arguments.size;
  Demo::DemoWindow demo(arguments.scene, options);
  if (!demo.isShown()) {
    std::cerr << "zephrimark-offload-demo: The window could not be made.\n";
    return 1;
  }
  if (arguments.dark) demo.setDark(*arguments.dark);
  std::unique_ptr<Demo::Screenshot> screenshot;
  if (arguments.screenshot) {
    screenshot = std::make_unique<Demo::Screenshot>(demo, *arguments.screenshot);
  }
  return application.exec();
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const auto arguments =
        Demo::DemoArguments::parse(std::vector<std::string>(argv + 1, argv + argc));
    if (arguments.wantsHelp) {
      std::cout << Demo::DemoArguments::help();
      return 0;
    }
    const QGuiApplication application(argc, argv);
    Translations::useLanguage(arguments.language);
    ZephrimarkUI::prepareApplication();
    return run(application, arguments);
  } catch (const Demo::DemoArguments::Error& error) {
    std::cerr << "zephrimark-offload-demo: " << error.what() << "\n";
    return 2;
  }
}
