#pragma once

#include <functional>

#include <QObject>
#include <QString>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

namespace ZephrimarkOffload {

/// What the window shows of the check for updates. Knows nothing of how one is made: whoever makes
/// them tells it what came of each. Main thread.
class UpdatePresenter final : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made by the application")
  /// Whether the menu offers a check.
  Q_PROPERTY(bool canCheckForUpdates READ canCheckForUpdates NOTIFY changed)
  /// What came of the last check, as plain text in the user's language; empty before the first.
  Q_PROPERTY(QString title READ title NOTIFY finished)
  Q_PROPERTY(QString message READ message NOTIFY finished)
  /// Whether there is a page to get the newer version from.
  Q_PROPERTY(bool hasDownload READ hasDownload NOTIFY finished)

 public:
  /// `check` starts a check; `open` shows a web page.
  UpdatePresenter(std::function<void()> check, std::function<void(const QUrl&)> open)
      : check_(std::move(check)), open_(std::move(open)) {}

  /// No before anybody has said otherwise.
  [[nodiscard]] bool canCheckForUpdates() const { return canCheck_; }
  /// Whether a check could be started now: such a copy can check, and none goes on.
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
  /// As the properties of the same names.
  [[nodiscard]] QString title() const { return title_; }
  [[nodiscard]] QString message() const { return message_; }
  [[nodiscard]] bool hasDownload() const { return !downloadPage_.isEmpty(); }

  /// Starts a check; only when one can be started.
  Q_INVOKABLE void checkForUpdates() { check_(); }
  /// Shows the page; only when there is one.
  Q_INVOKABLE void openDownloadPage() { open_(downloadPage_); }

 Q_SIGNALS:
  /// Whether a check can be started may be otherwise.
  void changed();
  /// A check has ended; its title and message are to be shown.
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
