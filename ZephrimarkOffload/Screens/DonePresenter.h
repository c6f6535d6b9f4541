#pragma once

#include "ZephrimarkOffload/Model/OffloadModel.h"
#include "ZephrimarkOffload/Screens/RowModel.h"

#include <functional>

#include <QString>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

namespace ZephrimarkOffload {

/// What the done screen shows of the offload that ended last, in words, and what its buttons do.
/// Main thread.
class DonePresenter final : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made by the application")
  Q_PROPERTY(bool isVerified READ isVerified NOTIFY changed)
  Q_PROPERTY(QString title READ title NOTIFY changed)
  Q_PROPERTY(QString sentence READ sentence NOTIFY changed)
  Q_PROPERTY(QString files READ files NOTIFY changed)
  Q_PROPERTY(QString took READ took NOTIFY changed)
  Q_PROPERTY(QString checksum READ checksum NOTIFY changed)
  // Roles: name, detail, place, isVerified.
  Q_PROPERTY(ZephrimarkOffload::RowModel* drives READ drives CONSTANT)
  Q_PROPERTY(QString cardImage READ cardImage NOTIFY changed)
  Q_PROPERTY(bool isCardImageVerified READ isCardImageVerified NOTIFY changed)
  Q_PROPERTY(QStringList unreadable READ unreadable NOTIFY changed)
  Q_PROPERTY(QStringList failedFiles READ failedFiles NOTIFY changed)

  Q_PROPERTY(QString missingProof READ missingProof NOTIFY changed)
  Q_PROPERTY(bool canOpenReport READ canOpenReport NOTIFY changed)
  Q_PROPERTY(bool canEject READ canEject NOTIFY changed)
  Q_PROPERTY(bool isEjecting READ isEjecting NOTIFY changed)
  Q_PROPERTY(QString ejectMessage READ ejectMessage NOTIFY changed)
  Q_PROPERTY(bool canTryAgain READ canTryAgain NOTIFY changed)

 public:
  /// Show a file or folder in the file manager; open a file with its application.
  using PathAction = std::function<void(const PlatformKit::Path&)>;

  /// The model outlives it.
  DonePresenter(OffloadModel& model, PathAction reveal, PathAction open);

  [[nodiscard]] bool isVerified() const;
  [[nodiscard]] QString title() const;
  [[nodiscard]] QString sentence() const;
  [[nodiscard]] QString files() const;
  [[nodiscard]] QString took() const;
  [[nodiscard]] QString checksum() const;
  [[nodiscard]] RowModel* drives() { return &drives_; }
  /// Empty when no card image was asked for.
  [[nodiscard]] QString cardImage() const;
  [[nodiscard]] bool isCardImageVerified() const;
  /// The first of what could not be read from the card, and of the files that failed somewhere.
  [[nodiscard]] QStringList unreadable() const { return unreadable_; }
  [[nodiscard]] QStringList failedFiles() const { return failedFiles_; }
  /// A sentence when a drive with verified files lacks its records; else empty.
  [[nodiscard]] QString missingProof() const;
  [[nodiscard]] bool canOpenReport() const;
  [[nodiscard]] bool canEject() const;
  [[nodiscard]] bool isEjecting() const { return model_.ejection().isGoingOn(); }
  [[nodiscard]] QString ejectMessage() const;
  [[nodiscard]] bool canTryAgain() const;

  Q_INVOKABLE void revealDrive(int row);
  Q_INVOKABLE void revealCardImage();
  Q_INVOKABLE void openReport();
  Q_INVOKABLE void eject();
  Q_INVOKABLE void tryAgain() { model_.tryAgain(); }
  Q_INVOKABLE void newOffload() { model_.showSetup(); }

 Q_SIGNALS:
  void changed();

 private:
  void stageChanged();
  [[nodiscard]] std::vector<QVariantMap> driveRows() const;

  OffloadModel& model_;
  PathAction reveal_;
  PathAction open_;
  // Both kept beyond the stage, since the screen fades out with what it showed. The run is null
  // before the first has ended.
  std::shared_ptr<const Run> run_;
  std::shared_ptr<const OffloadKit::OffloadResult> result_ =
      std::make_shared<const OffloadKit::OffloadResult>();
  RowModel drives_;
  QStringList unreadable_;
  QStringList failedFiles_;
};

}  // namespace ZephrimarkOffload
