#pragma once

#include "ZephrimarkOffload/Model/OffloadModel.h"
#include "ZephrimarkOffload/Screens/RowModel.h"
#include "ZephrimarkOffload/Screens/RunLog.h"

#include <QString>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

namespace ZephrimarkOffload {

/// What the running screen shows of the offload that runs, in words; once it has ended, what it
/// showed last, since the screen fades out. All texts are in the user's language and one line each.
/// However fast reports come, it changes at a rate that eyes can follow; the last report is always
/// shown. Main thread.
class RunningPresenter final : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made by the application")
  /// What is offloaded, and what is being done just now.
  Q_PROPERTY(QString heading READ heading NOTIFY changed)
  Q_PROPERTY(QString phase READ phase NOTIFY changed)
  /// How much of the work is done: 0 to 1, and the same in whole percent.
  Q_PROPERTY(double fraction READ fraction NOTIFY changed)
  Q_PROPERTY(QString percent READ percent NOTIFY changed)
  /// How many files are done of how many, how fast it goes, how long it may still take; each says
  /// that it is not known yet where that is so.
  Q_PROPERTY(QString files READ files NOTIFY changed)
  Q_PROPERTY(QString speed READ speed NOTIFY changed)
  Q_PROPERTY(QString remaining READ remaining NOTIFY changed)
  /// The path of the file within the source; empty when it is about none.
  Q_PROPERTY(QString currentFile READ currentFile NOTIFY changed)
  /// Whether it was asked to stop and has not ended yet.
  Q_PROPERTY(bool isStopping READ isStopping NOTIFY changed)
  /// The destinations, in their order. Roles: place, the volume's name and the chosen folder;
  /// outcome, how many files are verified and how many are not; fraction of the files verified, 0
  /// to 1; isProblem, when a file failed there.
  Q_PROPERTY(ZephrimarkOffload::RowModel* drives READ drives CONSTANT)
  /// What happened so far (see RunLog). Roles: time, the hour and minute here; text; isProblem.
  Q_PROPERTY(ZephrimarkOffload::RowModel* log READ log CONSTANT)

 public:
  /// Follows the model from here on, which outlives it.
  explicit RunningPresenter(OffloadModel& model);

  /// As the properties.
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

  /// Asks it to stop at its next step; nothing happens when none runs.
  Q_INVOKABLE void stop() { model_.cancel(); }

 Q_SIGNALS:
  /// Any property may be another; at most twenty times a second while reports come.
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
