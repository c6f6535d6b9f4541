#include "Updates/UpdateResult.h"

#include <QCoreApplication>

namespace Updates {
namespace {

QString ended(const QString& sentence) {
  return sentence.endsWith('.') ? sentence : sentence + '.';
}

}  // namespace

UpdateResult upToDate(const QString& currentVersion) {
  return {UpdateResult::Kind::upToDate,
          QCoreApplication::translate("Updates", "You have the newest version"),
          QCoreApplication::translate("Updates", "Zephrimark Offload %1 is the newest version.")
              .arg(currentVersion),
          {},
          {},
          {}};
}

UpdateResult available(const QString& currentVersion, const Feed& feed) {
  return {UpdateResult::Kind::available,
          QCoreApplication::translate("Updates", "Zephrimark Offload %1 is available")
              .arg(feed.versionText),
          QCoreApplication::translate("Updates",
                                      "You have %1. The download page opens in your browser; "
                                      "nothing is installed by itself.")
              .arg(currentVersion),
          feed.downloadPage,
          feed.versionText,
          feed.notes};
}

UpdateResult failed(const QString& why) {
  return {UpdateResult::Kind::failed,
          QCoreApplication::translate("Updates", "The update check didn't work"),
          why,
          {},
          {},
          {}};
}

QString sentenceFor(const DownloadFailure& failure) {
  switch (failure.kind) {
    case DownloadFailure::Kind::unreachable:
      return ended(
          QCoreApplication::translate("Updates", "The update server couldn't be reached: %1")
              .arg(failure.reason));
    case DownloadFailure::Kind::untrusted:
      return ended(
          QCoreApplication::translate("Updates", "The update server couldn't prove who it is: %1")
              .arg(failure.reason));
    case DownloadFailure::Kind::insecureRedirect:
      return QCoreApplication::translate("Updates",
                                         "The server redirected to an address that isn't secure.");
    case DownloadFailure::Kind::tooManyRedirects:
      return QCoreApplication::translate("Updates", "The server redirected too many times.");
    case DownloadFailure::Kind::badStatus:
      return QCoreApplication::translate("Updates", "The update server answered with the error %1.")
          .arg(failure.reason);
    case DownloadFailure::Kind::tooLarge:
      return QCoreApplication::translate(
          "Updates", "The update information is larger than it may be, so it was not used.");
  }
  return {};
}

}  // namespace Updates
