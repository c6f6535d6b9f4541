#include "ZephrimarkOffload/Screens/OffloadWindow.h"

#include "ZephrimarkUI/Setup.h"

#include <algorithm>

#include <QtQml/QQmlExtensionPlugin>

// Outside of any namespace, as the macro demands: a static plugin is only linked when it is named.
Q_IMPORT_QML_PLUGIN(ZephrimarkOffloadPlugin)

namespace ZephrimarkOffload {
namespace {

constexpr QSize kUsual{820, 840};
constexpr QSize kSmallest{720, 600};

}  // namespace

OffloadWindow::OffloadWindow(OffloadModel& model, Surroundings surroundings)
    : settings_(surroundings.settings),
      shell_(model, std::move(surroundings.home), std::move(surroundings.reveal),
             std::move(surroundings.open)) {
  ZephrimarkUI::prepareEngine(engine_);
  const auto kept = settings_.windowSize().value_or(std::pair(kUsual.width(), kUsual.height()));
  engine_.setInitialProperties({{"shell", QVariant::fromValue(&shell_)},
                                {"updates", QVariant::fromValue(&surroundings.updates)},
                                {"width", std::max(kept.first, kSmallest.width())},
                                {"height", std::max(kept.second, kSmallest.height())}});
  engine_.load(QUrl("qrc:/qt/qml/ZephrimarkOffload/Main.qml"));
  if (engine_.rootObjects().isEmpty()) return;
  window_ = qobject_cast<QQuickWindow*>(engine_.rootObjects().front());
  window_->show();
  size_ = window_->size();
  const auto remember = [this] {
    if (window_->visibility() == QWindow::Windowed) size_ = window_->size();
  };
  QObject::connect(window_, &QQuickWindow::widthChanged, window_, remember);
  QObject::connect(window_, &QQuickWindow::heightChanged, window_, remember);
}

OffloadWindow::~OffloadWindow() {
  if (size_.isValid()) settings_.saveWindowSize(size_.width(), size_.height());
}

void OffloadWindow::raise(const QString& activationToken) {
  if (!window_) return;
  // Where windows may not come to the front by themselves, the desktop wants to see its token.
  if (!activationToken.isEmpty()) qputenv("XDG_ACTIVATION_TOKEN", activationToken.toUtf8());
  if (window_->visibility() == QWindow::Minimized) window_->showNormal();
  window_->raise();
  window_->requestActivate();
}

}  // namespace ZephrimarkOffload
