#pragma once

#include "ZephrimarkOffload/Screens/DonePresenter.h"
#include "ZephrimarkOffload/Screens/RunningPresenter.h"
#include "ZephrimarkOffload/Screens/SetupPresenter.h"

#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

namespace ZephrimarkOffload {

/// What the window shows around its screens, and which of them; owns what the screens show. All
/// texts are in the user's language and one line each. Main thread.
class Shell final : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made by the application")
  /// Which screen the window shows: "setup", "running", "done" or "failed".
  Q_PROPERTY(QString stage READ stage NOTIFY stageChanged)
  /// The names of the steps in their order; the current one from 0, as many as there are when all
  /// are complete; and the sentence below them.
  Q_PROPERTY(QStringList steps READ steps CONSTANT)
  Q_PROPERTY(int step READ step NOTIFY changed)
  Q_PROPERTY(QString stepStatus READ stepStatus NOTIFY changed)
  /// Whether an offload runs, or a card is being ejected; while either does, the window asks before
  /// it closes.
  Q_PROPERTY(bool isRunning READ isRunning NOTIFY stageChanged)
  Q_PROPERTY(bool isEjecting READ isEjecting NOTIFY ejectChanged)
  /// Whether the last ejection worked.
  Q_PROPERTY(bool isEjected READ isEjected NOTIFY ejectChanged)
  /// Why the offload could not start; empty on the other screens.
  Q_PROPERTY(QString failedMessage READ failedMessage NOTIFY stageChanged)
  /// What this desktop calls showing an item in its file manager; the version of the product.
  Q_PROPERTY(QString showInFileBrowser READ showInFileBrowser CONSTANT)
  Q_PROPERTY(QString version READ version CONSTANT)
  /// What others made that the program consists of: "name" and "licence" of each.
  Q_PROPERTY(QVariantList components READ components CONSTANT)
  /// What the three screens show. They live as long as this object.
  Q_PROPERTY(ZephrimarkOffload::SetupPresenter* setup READ setup CONSTANT)
  Q_PROPERTY(ZephrimarkOffload::RunningPresenter* running READ running CONSTANT)
  Q_PROPERTY(ZephrimarkOffload::DonePresenter* done READ done CONSTANT)

 public:
  /// Makes the presenters and follows the model from here on, which outlives it. `home`: the user's
  /// home folder. `reveal` and `open`: see DonePresenter.
  Shell(OffloadModel& model, PlatformKit::Path home, DonePresenter::PathAction reveal,
        DonePresenter::PathAction open);

  /// As the properties of the same names.
  [[nodiscard]] QString stage() const;
  [[nodiscard]] static QStringList steps();
  [[nodiscard]] int step() const { return step_; }
  [[nodiscard]] QString stepStatus() const { return stepStatus_; }
  [[nodiscard]] bool isRunning() const { return is<Running>(model_.stage()); }
  [[nodiscard]] bool isEjecting() const { return model_.ejection().isGoingOn(); }
  [[nodiscard]] bool isEjected() const { return model_.ejection().isDone(); }
  [[nodiscard]] QString failedMessage() const;
  [[nodiscard]] static QString showInFileBrowser();
  [[nodiscard]] static QString version();
  [[nodiscard]] static QVariantList components();
  [[nodiscard]] SetupPresenter* setup() { return &setup_; }
  [[nodiscard]] RunningPresenter* running() { return &running_; }
  [[nodiscard]] DonePresenter* done() { return &done_; }

  /// Back from a failed start.
  Q_INVOKABLE void back() { model_.showSetup(); }

 Q_SIGNALS:
  /// Another screen is to be shown. What that screen shows is there by then.
  void stageChanged();
  /// An ejection began or ended.
  void ejectChanged();
  /// The steps changed; not with every report of progress.
  void changed();

 private:
  void update();

  OffloadModel& model_;
  SetupPresenter setup_;
  RunningPresenter running_;
  DonePresenter done_;
  QString stepStatus_;
  int step_ = 0;
};

}  // namespace ZephrimarkOffload
