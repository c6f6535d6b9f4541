#pragma once

#include "ZephrimarkOffload/Model/OffloadModel.h"
#include "ZephrimarkOffload/Screens/RowModel.h"

#include <QString>
#include <QStringList>
#include <QTimer>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

namespace ZephrimarkOffload {

/// What the setup screen shows, in words, and what its controls do. Main thread.
class SetupPresenter final : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made by the application")
  // Roles: name, detail, selected, symbol.
  Q_PROPERTY(ZephrimarkOffload::RowModel* cards READ cards CONSTANT)
  // Roles: name, place, free, isShort, isInternal.
  Q_PROPERTY(ZephrimarkOffload::RowModel* destinations READ destinations CONSTANT)
  // Roles: name, free.
  Q_PROPERTY(ZephrimarkOffload::RowModel* suggestedDrives READ suggestedDrives CONSTANT)

  Q_PROPERTY(bool hasSource READ hasSource NOTIFY changed)
  Q_PROPERTY(QString cardHint READ cardHint NOTIFY changed)
  Q_PROPERTY(QString sourceSummary READ sourceSummary NOTIFY changed)

  Q_PROPERTY(bool canAdd READ canAdd NOTIFY changed)
  Q_PROPERTY(QString drivesHint READ drivesHint NOTIFY changed)
  Q_PROPERTY(QString internalWarning READ internalWarning NOTIFY changed)
  Q_PROPERTY(QString ejectMessage READ ejectMessage NOTIFY changed)

  Q_PROPERTY(QString folderName READ folderName NOTIFY changed)
  Q_PROPERTY(QString onDrives READ onDrives NOTIFY changed)
  Q_PROPERTY(QStringList presetNames READ presetNames CONSTANT)
  Q_PROPERTY(int presetIndex READ presetIndex NOTIFY changed)
  Q_PROPERTY(bool isCustom READ isCustom NOTIFY changed)
  Q_PROPERTY(QString templateText READ templateText WRITE setTemplateText NOTIFY changed)
  Q_PROPERTY(QString tokensHelp READ tokensHelp CONSTANT)
  Q_PROPERTY(bool needsProject READ needsProject NOTIFY changed)
  Q_PROPERTY(QString project READ project WRITE setProject NOTIFY changed)

  Q_PROPERTY(QStringList algorithmNames READ algorithmNames CONSTANT)
  Q_PROPERTY(int algorithmIndex READ algorithmIndex WRITE setAlgorithmIndex NOTIFY changed)
  Q_PROPERTY(bool verifySource READ verifySource WRITE setVerifySource NOTIFY changed)
  Q_PROPERTY(bool ejectWhenDone READ ejectWhenDone WRITE setEjectWhenDone NOTIFY changed)
  Q_PROPERTY(bool saveCardImage READ saveCardImage WRITE setSaveCardImage NOTIFY changed)
  Q_PROPERTY(bool canSaveCardImage READ canSaveCardImage NOTIFY changed)
  Q_PROPERTY(QString cardImageDetail READ cardImageDetail NOTIFY changed)
  Q_PROPERTY(QString cardImageCaption READ cardImageCaption NOTIFY changed)

  Q_PROPERTY(QString blocker READ blocker NOTIFY changed)
  Q_PROPERTY(QString startSummary READ startSummary NOTIFY changed)

 public:
  /// The model outlives it. `home`: the user's home folder, shown as "~".
  SetupPresenter(OffloadModel& model, PlatformKit::Path home);

  [[nodiscard]] RowModel* cards() { return &cards_; }
  [[nodiscard]] RowModel* destinations() { return &destinations_; }
  [[nodiscard]] RowModel* suggestedDrives() { return &suggestedDrives_; }

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

  Q_INVOKABLE void selectCard(int row);
  Q_INVOKABLE void removeDestination(int row);
  Q_INVOKABLE void addSuggested(int row);
  /// `index` of `presetNames`; the last one keeps the template and lets the user edit it.
  Q_INVOKABLE void choosePreset(int index);
  Q_INVOKABLE void chooseSource(const QUrl& folder);
  Q_INVOKABLE void addDestination(const QUrl& folder);
  /// Whether all of these are items on this computer, which may be folders.
  Q_INVOKABLE static bool canTake(const QList<QUrl>& urls);
  /// Takes dropped folders: the first as the source, or all as destinations.
  Q_INVOKABLE void take(const QList<QUrl>& urls, bool asSource);
  Q_INVOKABLE void start() { model_.start(); }
  /// The screen is shown anew: a template that is one of the presets is no custom one any more.
  Q_INVOKABLE void reopen();

 Q_SIGNALS:
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
