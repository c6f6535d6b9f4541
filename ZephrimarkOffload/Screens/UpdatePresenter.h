#pragma once

#include <functional>

#include <QObject>
#include <QString>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

namespace ZephrimarkOffload {

/// What the window shows of the check for updates. Main thread.
class UpdatePresenter final : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made by the application")
  Q_PROPERTY(bool canCheckForUpdates READ canCheckForUpdates NOTIFY changed)
  Q_PROPERTY(QString title READ title NOTIFY finished)
  Q_PROPERTY(QString message READ message NOTIFY finished)
  Q_PROPERTY(bool hasDownload READ hasDownload NOTIFY finished)

 public:
  /// `check` starts a check; `open` shows a web page.
  UpdatePresenter(std::function<void()> check, std::function<void(const QUrl&)> open)
      : check_(std::move(check)), open_(std::move(open)) {}

  [[nodiscard]] bool canCheckForUpdates() const { return canCheck_; }
  void setCanCheckForUpdates(bool canCheck) {
    canCheck_ = canCheck;
    emit changed();
  }

  /// Shows the outcome of a check; `downloadPage` is empty when there is nothing to download.
  void show(const QString& title, const QString& message, const QUrl& downloadPage) {
    title_ = title;
    message_ = message;
    downloadPage_ = downloadPage;
    emit finished();
  }
  [[nodiscard]] QString title() const { return title_; }
  [[nodiscard]] QString message() const { return message_; }
  [[nodiscard]] bool hasDownload() const { return !downloadPage_.isEmpty(); }

  Q_INVOKABLE void checkForUpdates() { check_(); }
  Q_INVOKABLE void openDownloadPage() { open_(downloadPage_); }

 Q_SIGNALS:
  void changed();
  void finished();

 private:
  std::function<void()> check_;
  std::function<void(const QUrl&)> open_;
  bool canCheck_ = false;
  QString title_;
  QString message_;
  QUrl downloadPage_;
};

}  // namespace ZephrimarkOffload
