#include "ZephrimarkOffload/Screens/Shell.h"

#include "OffloadKit/Records/Version.h"
#include "TextKit/Translation.h"
#include "ZephrimarkOffload/Model/PlatformWords.h"
#include "ZephrimarkOffload/Screens/Text.h"

#include <QFile>

namespace ZephrimarkOffload {

Shell::Shell(OffloadModel& model, PlatformKit::Path home, DonePresenter::PathAction reveal,
             DonePresenter::PathAction open)
    : model_(model),
      setup_(model, std::move(home)),
      running_(model),
      done_(model, std::move(reveal), std::move(open)) {
  // Behind the screens' own: when one becomes visible, what it shows is there.
  connect(&model_, &OffloadModel::stageChanged, this, &Shell::stageChanged);
  connect(&model_.ejection(), &CardEjection::changed, this, &Shell::ejectChanged);
  for (const auto signal : {&OffloadModel::stageChanged, &OffloadModel::progressChanged}) {
    connect(&model_, signal, this, &Shell::update);
  }
  for (const auto signal : {&OffloadSetup::sourceChanged, &OffloadSetup::destinationsChanged,
                            &OffloadSetup::optionsChanged}) {
    connect(&model_.setup(), signal, this, &Shell::update);
  }
  connect(&model_.ejection(), &CardEjection::changed, this, &Shell::update);
  update();
}

// Reports come often, and hardly one changes the line.
void Shell::update() {
  const QString status = QString::fromStdString(model_.stepStatus());
  const int step = model_.step();
  if (status == stepStatus_ && step == step_) return;
  stepStatus_ = status;
  step_ = step;
  emit changed();
}

QString Shell::stage() const {
  const Stage& stage = model_.stage();
  if (is<Running>(stage)) return "running";
  if (is<Done>(stage)) return "done";
  return is<Failed>(stage) ? "failed" : "setup";
}

QStringList Shell::steps() {
  return {tr("Card"), tr("Drives"), tr("Copy and verify"), tr("Done")};
}

QString Shell::failedMessage() const {
  const auto* failed = std::get_if<Failed>(&model_.stage());
  return failed == nullptr ? QString() : lineText(failed->message);
}

QString Shell::showInFileBrowser() {
  return QString::fromStdString(TextKit::translate("Platform", kWords.showInFileBrowser));
}

QString Shell::version() {
  const std::string_view version = OffloadKit::productVersion();
  return QString::fromUtf8(version.data(), static_cast<qsizetype>(version.size()));
}

QVariantList Shell::components() {
  QVariantList components;
  QFile list(QStringLiteral(":/qt/qml/ZephrimarkOffload/licences.txt"));
  if (!list.open(QIODevice::ReadOnly)) return components;  // it is part of the program
  const QStringList lines = QString::fromUtf8(list.readAll()).split(u'\n', Qt::SkipEmptyParts);
  for (const QString& line : lines) {
    const QStringList columns = line.split(QStringLiteral(" | "));
    if (line.startsWith(u'#') || columns.size() < 2) continue;
    components << QVariantMap{{"name", columns[0]}, {"licence", columns[1]}};
  }
  return components;
}

}  // namespace ZephrimarkOffload
