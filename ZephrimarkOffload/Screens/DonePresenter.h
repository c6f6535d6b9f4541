#pragma once

#include "OffloadKit/Records/Verdict.h"
#include "ZephrimarkOffload/Model/OffloadModel.h"
#include "ZephrimarkOffload/Screens/RowModel.h"

#include <functional>

#include <QString>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

namespace ZephrimarkOffload {

/// What the done screen shows of the offload that ended last, in words, and what its buttons do. It
/// keeps that until the next one ends, since the screen fades out. All texts are in the user's
/// language and one line each. Main thread.
class DonePresenter final : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made by the application")
  /// Whether the verdict is good, and the words for how it went.
  Q_PROPERTY(bool isGood READ isGood NOTIFY changed)
  Q_PROPERTY(QString title READ title NOTIFY changed)
  Q_PROPERTY(QString sentence READ sentence NOTIFY changed)
  /// How much was copied, how long that took and how fast it was, and by which checksum.
  Q_PROPERTY(QString files READ files NOTIFY changed)
  Q_PROPERTY(QString took READ took NOTIFY changed)
  Q_PROPERTY(QString checksum READ checksum NOTIFY changed)
  /// The destinations, in their order. Roles: name of the volume; detail, how many files are
  /// verified and what went wrong; place, the folder; isVerified, when every file is verified
  /// there.
  Q_PROPERTY(ZephrimarkOffload::RowModel* drives READ drives CONSTANT)
  Q_PROPERTY(QString cardImage READ cardImage NOTIFY changed)
  Q_PROPERTY(bool isCardImageWhole READ isCardImageWhole NOTIFY changed)
  Q_PROPERTY(bool isCardImageVerified READ isCardImageVerified NOTIFY changed)
  Q_PROPERTY(QStringList unreadable READ unreadable NOTIFY changed)
  Q_PROPERTY(QStringList failedFiles READ failedFiles NOTIFY changed)

  Q_PROPERTY(QString missingProof READ missingProof NOTIFY changed)
  /// Whether any drive got its report, and whether the source can be ejected: a card that was never
  /// gone since the start. How the last ejection went.
  Q_PROPERTY(bool canOpenReport READ canOpenReport NOTIFY changed)
  Q_PROPERTY(bool canEject READ canEject NOTIFY changed)
  Q_PROPERTY(bool isEjecting READ isEjecting NOTIFY changed)
  Q_PROPERTY(QString ejectMessage READ ejectMessage NOTIFY changed)
  /// Whether a file failed, so that another run could help.
  Q_PROPERTY(bool canTryAgain READ canTryAgain NOTIFY changed)

 public:
  /// Show a file or folder in the file manager; open a file with its application.
  using PathAction = std::function<void(const PlatformKit::Path&)>;

  /// Follows the model from here on, which outlives it. Both actions return at once and may be
  /// called with items that are gone.
  DonePresenter(OffloadModel& model, PathAction reveal, PathAction open);

  /// As the properties of the same names.
  [[nodiscard]] bool isGood() const { return verdict_.isGood(); }
  [[nodiscard]] QString title() const;
  [[nodiscard]] QString sentence() const;
  [[nodiscard]] QString files() const;
  [[nodiscard]] QString took() const;
  [[nodiscard]] QString checksum() const;
  [[nodiscard]] RowModel* drives() { return &drives_; }
  /// Empty when no card image was asked for.
  [[nodiscard]] QString cardImage() const;
  /// Whether it is verified and has no holes.
  [[nodiscard]] bool isCardImageWhole() const {
    return !verdict_.has(OffloadKit::Verdict::Finding::imageIncomplete);
  }
  /// Whether it is there to be shown.
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

  /// Shows the folder on the drive, or the image, in the file manager; one that is not there is
  /// ignored.
  Q_INVOKABLE void revealDrive(int row);
  Q_INVOKABLE void revealCardImage();
  /// Opens the first report with its application.
  Q_INVOKABLE void openReport();
  /// Ejects the card in the background, unless that goes on or it cannot be ejected.
  Q_INVOKABLE void eject();
  /// See OffloadModel::tryAgain and showSetup.
  Q_INVOKABLE void tryAgain() { model_.tryAgain(); }
  Q_INVOKABLE void newOffload() { model_.showSetup(); }

 Q_SIGNALS:
  /// Any property may be another.
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
  OffloadKit::Verdict verdict_{*result_};
  RowModel drives_;
  QStringList unreadable_;
  QStringList failedFiles_;
};

}  // namespace ZephrimarkOffload
