#include "Composition/Machine.h"
#include "OffloadKit/Records/Version.h"
#include "PlatformKit/Posix/Interrupts.h"
#include "PlatformKit/Posix/OpenFiles.h"
#include "PlatformKit/Posix/Terminal.h"
#include "TextKit/Translation.h"
#include "Translations/Language.h"
#include "Updates/AppUpdater.h"
#include "ZephrimarkOffload/Desktop/DesktopServices.h"
#include "ZephrimarkOffload/Desktop/FileManager.h"
#include "ZephrimarkOffload/Desktop/SingleInstance.h"
#include "ZephrimarkOffload/Model/OffloadModel.h"
#include "ZephrimarkOffload/Model/SystemDiskQueries.h"
#include "ZephrimarkOffload/Screens/OffloadWindow.h"
#include "ZephrimarkOffload/Screens/Text.h"
#include "ZephrimarkUI/Setup.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QSessionManager>
#include <QTimer>

namespace {

using ZephrimarkOffload::OffloadModel;
using ZephrimarkOffload::OffloadWindow;
using ZephrimarkOffload::SingleInstance;

using TextKit::translate;

std::string help() {
  return translate(
             "Start",
             "Usage: zephrimark-offload [-ZMSource FOLDER] [-ZMDestinations FOLDER[:FOLDER...]]\n"
             "                          [-ZMAutoStart YES]\n"
             "Opens the window of Zephrimark Offload, with a source and destinations already "
             "chosen if\n"
             "they are given; with -ZMAutoStart YES the offload starts after a second, when it "
             "can.\n"
             "On the command line, use zephrimark.") +
         "\n";
}

/// The computer and what is asked of its disks.
struct Services {
  Composition::Machine machine;
  ZephrimarkOffload::SystemDiskQueries disks{machine.platform(), machine.mountedVolumes(),
                                             machine.disks(), &machine.ejector()};
};

/// The check for updates and what the window shows of it.
class UpdateCheck {
 public:
  UpdateCheck()
      : presenter_([this] { updater_.checkForUpdates(); },
                   [](const QUrl& page) { QDesktopServices::openUrl(page); }),
        updater_(Updates::defaultConfiguration()) {
    const auto follow = [this] { presenter_.setCanCheckForUpdates(updater_.canCheckForUpdates()); };
    QObject::connect(&updater_, &Updates::AppUpdater::canCheckForUpdatesChanged, follow);
    QObject::connect(&updater_, &Updates::AppUpdater::finished,
                     [this](const Updates::UpdateResult& result) {
                       presenter_.show(result.title, result.message, result.downloadPage);
                     });
    follow();
  }

  [[nodiscard]] ZephrimarkOffload::UpdatePresenter& presenter() { return presenter_; }

 private:
  ZephrimarkOffload::UpdatePresenter presenter_;
  Updates::AppUpdater updater_;
};

// Set by a signal, which can come before there is an application to end.
std::atomic<bool> endIsWanted = false;

void endBySignal(int /*signal*/) {
  endIsWanted = true;
  // Not quit(), which would ask the window first.
  if (QCoreApplication* running = QCoreApplication::instance()) {
    QMetaObject::invokeMethod(
        running, [] { QCoreApplication::exit(0); }, Qt::QueuedConnection);
  }
}

void applyLaunchOptions(OffloadModel& model, const ZephrimarkOffload::LaunchOptions& options) {
  if (options.source) model.setup().setSource(*options.source);
  if (options.destinations) model.setup().setDestinations(*options.destinations);
  if (options.autoStart) {
    QTimer::singleShot(std::chrono::seconds(1), &model, [&model] { model.start(); });
  }
}

// A desktop that asks before it logs the user out gets "not now" while an offload runs.
void delayLogout(const QGuiApplication& application, const OffloadModel& model) {
  QObject::connect(&application, &QGuiApplication::commitDataRequest, &model,
                   [&model](QSessionManager& session) {
                     if (ZephrimarkOffload::is<ZephrimarkOffload::Running>(model.stage()) &&
                         session.allowsInteraction()) {
                       session.cancel();
                     }
                   });
}

// The window system's own message speaks of plugins, and ends in a crash.
bool hasScreen() {
  return !qEnvironmentVariableIsEmpty("DISPLAY") ||
         !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
         !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

int endAsSecond(const SingleInstance& instance) {
  if (instance.acknowledged()) {
    std::cerr << translate("Start",
                           "Zephrimark Offload is already running; its window was brought to the "
                           "front.")
              << "\n";
    return 0;
  }
  std::cerr << translate("Start",
                         "Zephrimark Offload is already running but does not answer. End it first.")
            << "\n";
  return 1;
}

int run(QGuiApplication& application, const std::vector<std::string>& arguments,
        SingleInstance& instance, const std::shared_ptr<Services>& services) {
  const Composition::Machine& machine = services->machine;
  const QDBusConnection session = QDBusConnection::sessionBus();
  ZephrimarkOffload::DesktopServices desktop(session, QDBusConnection::systemBus());
  ZephrimarkOffload::FileManager files(
      session, [](const QUrl& folder) { QDesktopServices::openUrl(folder); });
  ZephrimarkOffload::Settings settings;
  const auto watcher = Composition::Machine::makeVolumeWatcher();
  OffloadModel model({std::shared_ptr<ZephrimarkOffload::DiskQueries>(services, &services->disks),
                      *watcher, desktop, settings, machine.platform().clock, [services] {
                        const Composition::Machine& computer = services->machine;
                        return std::make_unique<ZephrimarkOffload::EngineRunner>(
                            computer.platform(), computer.rawDevices(), computer.disks());
                      }});
  UpdateCheck updates;
  OffloadWindow window(model, {settings, updates.presenter(),
                               PlatformKit::Path(QFile::encodeName(QDir::homePath()).toStdString()),
                               [&files](const PlatformKit::Path& item) { files.reveal(item); },
                               [](const PlatformKit::Path& file) {
                                 QDesktopServices::openUrl(ZephrimarkOffload::urlOf(file));
                               }});
  if (!window.isShown()) {
    std::cerr << "zephrimark-offload: "
              << translate("Start", "The window could not be made. The installation is damaged.")
              << "\n";
    return 1;
  }
  QObject::connect(&instance, &SingleInstance::activationRequested,
                   [&window](const QString& token) { window.raise(token); });
  delayLogout(application, model);
  applyLaunchOptions(model, settings.launchOptions(arguments));
  return endIsWanted ? 0 : application.exec();
}

int start(QGuiApplication& application, const std::vector<std::string>& arguments,
          const QString& activationToken) {
  const auto services = std::make_shared<Services>();
  SingleInstance instance(services->machine.platform().fileSystem,
                          ZephrimarkOffload::instanceFolder());
  if (instance.claim(activationToken) == SingleInstance::Role::second) return endAsSecond(instance);
  try {
    return run(application, arguments, instance, services);
  } catch (const std::exception& error) {
    std::cerr << "zephrimark-offload: " << error.what() << "\n";
    return 1;
  }
}

// For "--version" and "--help"; none for anything else.
std::optional<std::string> answerTo(const std::vector<std::string>& arguments) {
  for (const std::string& argument : arguments) {
    if (argument == "--version") {
      return "zephrimark-offload " + std::string(OffloadKit::productVersion()) + "\n";
    }
    if (argument == "--help" || argument == "-h") return help();
  }
  return std::nullopt;
}

}  // namespace

int main(int argc, char** argv) {
  PlatformKit::openMissingStandardStreams();
  PlatformKit::raiseOpenFilesLimit();
  const std::string language = Translations::languageOfUser();
  Translations::useLanguage(language);
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  if (const auto answer = answerTo(arguments)) {
    std::cout << *answer;
    return 0;
  }
  if (!hasScreen()) {
    std::cerr << "zephrimark-offload: "
              << translate("Start",
                           "There is no screen to open a window on. On the command line, use "
                           "zephrimark.")
              << "\n";
    return 1;
  }
  const QString token = ZephrimarkOffload::startActivationToken();
  // Before any other thread. An offload that runs ends at its next step, as with Stop.
  const PlatformKit::Interrupts interrupts(endBySignal);
  QGuiApplication application(argc, argv);
  Translations::useLanguage(language);
  QGuiApplication::setApplicationName("Zephrimark Offload");
  QGuiApplication::setDesktopFileName("com.zephrimark.offload");
  ZephrimarkUI::prepareApplication();
  QGuiApplication::setWindowIcon(ZephrimarkUI::applicationIcon());
  const int status = start(application, arguments, token);
  // All work is done and everything is closed. What may be left are threads that wait for a dead
  // volume, which must not meet the objects of the program being destroyed.
  std::cout.flush();
  std::_Exit(status);
}
