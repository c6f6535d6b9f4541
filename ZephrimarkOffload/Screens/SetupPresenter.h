#pragma once

#include "ZephrimarkOffload/Model/OffloadModel.h"
#include "ZephrimarkOffload/Screens/RowModel.h"

#include <QString>
#include <QStringList>
#include <QTimer>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

namespace ZephrimarkOffload {

/// What the setup screen shows, in words, and what its controls do. All texts are in the user's
/// language and one line each, unless it says otherwise; empty means that nothing is shown there.
/// Nothing here fails or waits for a disk: what is not known yet shows as such and follows with a
/// signal. Main thread.
class SetupPresenter final : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made by the application")
  /// The cards to choose from, in the order of mounting, and behind them a chosen source that is
  /// none of them. Roles: name; detail, how full it is; selected; symbol, the name of an icon.
  Q_PROPERTY(ZephrimarkOffload::RowModel* cards READ cards CONSTANT)
  /// The chosen destinations, in the user's order. Roles: name of the volume; place on it; free,
  /// empty until it has answered; isShort, when the source does not fit; isInternal, on this
  /// computer's disk.
  Q_PROPERTY(ZephrimarkOffload::RowModel* destinations READ destinations CONSTANT)
  /// The drives that could still be chosen, none when no more destinations can be added. Roles:
  /// name; free, empty until the drive has answered.
  Q_PROPERTY(ZephrimarkOffload::RowModel* suggestedDrives READ suggestedDrives CONSTANT)

  /// Whether a source is chosen; what to do when there is not even a card to choose; and how much
  /// an offload of it would copy, with the camera's brand.
  Q_PROPERTY(bool hasSource READ hasSource NOTIFY changed)
  Q_PROPERTY(QString cardHint READ cardHint NOTIFY changed)
  Q_PROPERTY(QString sourceSummary READ sourceSummary NOTIFY changed)

  /// Whether another destination can be added, and what to do when no drive is offered.
  Q_PROPERTY(bool canAdd READ canAdd NOTIFY changed)
  Q_PROPERTY(QString drivesHint READ drivesHint NOTIFY changed)
  /// The warning that every copy would be on this computer, when that is so.
  Q_PROPERTY(QString internalWarning READ internalWarning NOTIFY changed)
  /// How the last ejection went.
  Q_PROPERTY(QString ejectMessage READ ejectMessage NOTIFY changed)

  /// The folder on every destination, as it would be called now, and the words behind it. It may
  /// hold the time, so `changed` comes every ten seconds, too.
  Q_PROPERTY(QString folderName READ folderName NOTIFY changed)
  Q_PROPERTY(QString onDrives READ onDrives NOTIFY changed)
  /// The ready-made templates, a separator ("---"), and the entry for one of the user's own.
  Q_PROPERTY(QStringList presetNames READ presetNames CONSTANT)
  Q_PROPERTY(int presetIndex READ presetIndex NOTIFY changed)
  Q_PROPERTY(bool isCustom READ isCustom NOTIFY changed)
  /// As typed, placeholders included; what is written is saved and counts as custom from then on.
  Q_PROPERTY(QString templateText READ templateText WRITE setTemplateText NOTIFY changed)
  /// Every placeholder with its meaning, one per line.
  Q_PROPERTY(QString tokensHelp READ tokensHelp CONSTANT)
  /// Whether the template names a project, and the name that was typed for it; it may be empty.
  Q_PROPERTY(bool needsProject READ needsProject NOTIFY changed)
  Q_PROPERTY(QString project READ project WRITE setProject NOTIFY changed)

  /// The checksums to choose from, and which one is chosen. An index out of range is ignored.
  Q_PROPERTY(QStringList algorithmNames READ algorithmNames CONSTANT)
  Q_PROPERTY(int algorithmIndex READ algorithmIndex WRITE setAlgorithmIndex NOTIFY changed)
  /// The options of the same names (see Options); what is written is saved at once.
  Q_PROPERTY(bool verifySource READ verifySource WRITE setVerifySource NOTIFY changed)
  Q_PROPERTY(bool ejectWhenDone READ ejectWhenDone WRITE setEjectWhenDone NOTIFY changed)
  Q_PROPERTY(bool saveCardImage READ saveCardImage WRITE setSaveCardImage NOTIFY changed)
  /// Whether the source is a whole card on one disk, so that an image of it can be saved; the size
  /// and the destination that receives it, as rich text; and what it is for, or what it needs.
  Q_PROPERTY(bool canSaveCardImage READ canSaveCardImage NOTIFY changed)
  Q_PROPERTY(QString cardImageDetail READ cardImageDetail NOTIFY changed)
  Q_PROPERTY(QString cardImageCaption READ cardImageCaption NOTIFY changed)

  /// Why the offload cannot start; empty when it can. What it would copy to how many drives.
  Q_PROPERTY(QString blocker READ blocker NOTIFY changed)
  Q_PROPERTY(QString startSummary READ startSummary NOTIFY changed)

 public:
  /// Follows the model and its setup from here on. The model outlives it. `home`: the user's home
  /// folder, shown as "~" where a path begins with it.
  SetupPresenter(OffloadModel& model, PlatformKit::Path home);

  /// Owned by this object, as all lists of rows are.
  [[nodiscard]] RowModel* cards() { return &cards_; }
  [[nodiscard]] RowModel* destinations() { return &destinations_; }
  [[nodiscard]] RowModel* suggestedDrives() { return &suggestedDrives_; }

  /// As the properties of the same names.
  [[nodiscard]] bool hasSource() const { return setup_.hasSource(); }
  [[nodiscard]] QString cardHint() const;
  [[nodiscard]] QString sourceSummary() const;
  [[nodiscard]] bool canAdd() const;
  [[nodiscard]] QString drivesHint() const;
  [[nodiscard]] QString internalWarning() const;
  [[nodiscard]] QString ejectMessage() const;
  [[nodiscard]] QString folderName() const;
  [[nodiscard]] QString onDrives() const;
  [[nodiscard]] static QStringList presetNames();
  [[nodiscard]] int presetIndex() const;
  [[nodiscard]] bool isCustom() const;
  [[nodiscard]] QString templateText() const;
  /// Writing what is there already changes nothing.
  void setTemplateText(const QString& text);
  [[nodiscard]] static QString tokensHelp();
  [[nodiscard]] bool needsProject() const;
  [[nodiscard]] QString project() const;
  void setProject(const QString& project);
  [[nodiscard]] static QStringList algorithmNames();
  [[nodiscard]] int algorithmIndex() const;
  void setAlgorithmIndex(int index);
  [[nodiscard]] bool verifySource() const { return setup_.options().verifySource; }
  void setVerifySource(bool on) { setup_.set(&Options::verifySource, on); }
  [[nodiscard]] bool ejectWhenDone() const { return setup_.options().ejectWhenDone; }
  void setEjectWhenDone(bool on) { setup_.set(&Options::ejectWhenDone, on); }
  [[nodiscard]] bool saveCardImage() const { return setup_.options().saveCardImage; }
  void setSaveCardImage(bool on) { setup_.set(&Options::saveCardImage, on); }
  [[nodiscard]] bool canSaveCardImage() const { return setup_.source()->facts.disk.has_value(); }
  [[nodiscard]] QString cardImageDetail() const;
  [[nodiscard]] QString cardImageCaption() const;
  [[nodiscard]] QString blocker() const;
  [[nodiscard]] QString startSummary() const;

  /// Rows are those of the lists above; one that is not there is ignored. To select the selected
  /// card again changes nothing.
  Q_INVOKABLE void selectCard(int row);
  Q_INVOKABLE void removeDestination(int row);
  Q_INVOKABLE void addSuggested(int row);
  /// `index` of `presetNames`; the last one keeps the template and lets the user edit it.
  Q_INVOKABLE void choosePreset(int index);
  /// Take the folder of a file URL; any other URL is ignored. A fourth destination is, too.
  Q_INVOKABLE void chooseSource(const QUrl& folder);
  Q_INVOKABLE void addDestination(const QUrl& folder);
  /// Whether all of these are items on this computer, which may be folders.
  Q_INVOKABLE static bool canTake(const QList<QUrl>& urls);
  /// Takes dropped folders: the first as the source, or all as destinations.
  Q_INVOKABLE void take(const QList<QUrl>& urls, bool asSource);
  /// Does nothing when something blocks the start.
  Q_INVOKABLE void start() { model_.start(); }
  /// The screen is shown anew: a template that is one of the presets is no custom one any more.
  Q_INVOKABLE void reopen();

 Q_SIGNALS:
  /// Any property may be another. The rows of the lists have changed by then.
  void changed();

 private:
  void update();
  void updateCards();
  void updateDestinations();
  void updateSuggested();

  OffloadModel& model_;
  OffloadSetup& setup_;  // the model's
  PlatformKit::Path home_;
  RowModel cards_;
  RowModel destinations_;
  RowModel suggestedDrives_;
  bool customPreset_ = false;
  QTimer clock_;  // the folder's name can hold the time
};

}  // namespace ZephrimarkOffload
