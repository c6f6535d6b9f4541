#pragma once

#include "ZephrimarkOffload/Model/OffloadModel.h"
#include "ZephrimarkOffload/Screens/RowModel.h"
#include "ZephrimarkOffload/Screens/RunLog.h"

#include <QString>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

namespace ZephrimarkOffload {

/// What the running screen shows, in words. However fast reports come, it changes at a rate that
/// eyes can follow; the last report is always shown. Main thread.
class RunningPresenter final : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made by the application")
  Q_PROPERTY(QString heading READ heading NOTIFY changed)
  Q_PROPERTY(QString phase READ phase NOTIFY changed)
  Q_PROPERTY(double fraction READ fraction NOTIFY changed)
  Q_PROPERTY(QString percent READ percent NOTIFY changed)
  Q_PROPERTY(QString files READ files NOTIFY changed)
  Q_PROPERTY(QString speed READ speed NOTIFY changed)
  Q_PROPERTY(QString remaining READ remaining NOTIFY changed)
  Q_PROPERTY(QString currentFile READ currentFile NOTIFY changed)
  Q_PROPERTY(bool isStopping READ isStopping NOTIFY changed)
  // Roles: place, outcome, fraction, isProblem.
  Q_PROPERTY(ZephrimarkOffload::RowModel* drives READ drives CONSTANT)
  // Roles: time, text, isProblem.
  Q_PROPERTY(ZephrimarkOffload::RowModel* log READ log CONSTANT)

 public:
  /// The model outlives it.
  explicit RunningPresenter(OffloadModel& model);

  [[nodiscard]] QString heading() const;
  [[nodiscard]] QString phase() const;
  [[nodiscard]] double fraction() const;
  [[nodiscard]] QString percent() const;
  [[nodiscard]] QString files() const;
  [[nodiscard]] QString speed() const;
  [[nodiscard]] QString remaining() const;
  [[nodiscard]] QString currentFile() const;
  [[nodiscard]] bool isStopping() const;
  [[nodiscard]] RowModel* drives() { return &drives_; }
  [[nodiscard]] RowModel* log() { return &logRows_; }

  Q_INVOKABLE void stop() { model_.cancel(); }

 Q_SIGNALS:
  void changed();

 private:
  void stageChanged();
  void progressed();
  void show();
  void showDrives();
  void showLog();

  OffloadModel& model_;
  std::shared_ptr<const Run> run_;  // shown now or last; null before the first
  std::optional<OffloadKit::OffloadProgress> shown_;
  RunLog events_{{}};
  RowModel drives_;
  RowModel logRows_;
  QTimer next_;  // running: a report that comes now waits for its end
  bool isWaiting_ = false;
};

}  // namespace ZephrimarkOffload
