#include "ZephrimarkOffload/Demo/DemoWindow.h"

#include "ZephrimarkOffload/Demo/Footage.h"

#include <chrono>

#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>

namespace ZephrimarkOffload::Demo {

DemoWindow::DemoWindow(Scene scene, Options options)
    : scene_(std::move(scene)),
      settings_(folder_.filePath("settings.ini")),
      clock_(scene_.isFrozen),
      disks_(std::make_shared<ScriptedDisks>(scene_.cards, scene_.drives)),
      updates_([] {}, [](const QUrl&) {}) {
  settings_.save(scene_.choices);
  if (options.size) settings_.saveWindowSize(options.size->width(), options.size->height());
  model_ = std::make_unique<OffloadModel>(OffloadModel::Services{
      disks_, *disks_, desktop_, settings_, clock_, [this]() -> std::unique_ptr<OffloadRunner> {
        return std::make_unique<ScriptedRunner>(scene_.script,
                                                [disks = disks_](const PlatformKit::Path& source) {
                                                  return footage(disks->count(source));
                                                });
      }});
  model_->setup().setSource(scene_.source);
  window_ = std::make_unique<OffloadWindow>(
      *model_, OffloadWindow::Surroundings{settings_, updates_, "/home/kim",
                                           std::move(options.reveal), std::move(options.open)});
  steps_.callOnTimeout([this] { advance(); });
  if (isShown()) steps_.start(std::chrono::milliseconds(10));
}

void DemoWindow::setDark(bool dark) {
  // The look is a singleton written in QML, which only QML can get hold of.
  QQmlComponent component(qmlEngine(&window()));
  component.setData("import QtQml; import ZephrimarkUI; QtObject { property var brand: Brand }",
                    {});
  const std::unique_ptr<QObject> holder(component.create());
  holder->property("brand").value<QObject*>()->setProperty("dark", dark);
}

void DemoWindow::advance() {
  if (!isAnswered()) return;
  if (!is<Choosing>(scene_.shows) && !isStarted_) {
    isStarted_ = true;
    model_->start();
    clock_.advance(scene_.elapsed);
  }
  const Stage& stage = model_->stage();
  if (stage.index() != scene_.shows.index()) return;
  if (is<Running>(stage) && !std::get<Running>(stage).progress) return;
  if (!isDialogOpen()) return;
  isReady_ = true;
  steps_.stop();
}

bool DemoWindow::isAnswered() const {
  const OffloadSetup& setup = model_->setup();
  for (std::size_t i = 0; i < setup.destinations().size(); ++i) {
    if (!setup.destinationFacts(i)) return false;
  }
  return setup.cards().size() == scene_.cards.size() &&
         setup.drives().size() == scene_.drives.size() &&
         (scene_.source.empty() || setup.source()->count.files > 0);
}

bool DemoWindow::isDialogOpen() {
  if (scene_.dialog.empty()) return true;
  auto* dialog = window().findChild<QObject*>(QString::fromStdString(scene_.dialog));
  if (dialog == nullptr) return false;
  if (!dialog->property("visible").toBool()) QMetaObject::invokeMethod(dialog, "open");
  return dialog->property("opened").toBool();
}

}  // namespace ZephrimarkOffload::Demo
