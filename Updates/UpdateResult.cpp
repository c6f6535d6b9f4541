#include "Updates/UpdateResult.h"

namespace Updates {
namespace {

QString ended(const QString& sentence) {
  return sentence.endsWith('.') ? sentence : sentence + '.';
}

}  // namespace

UpdateResult upToDate(const QString& currentVersion) {
  return {UpdateResult::Kind::upToDate,
          "You have the newest version",
          "Zephrimark Offload " + currentVersion + " is the newest version.",
          {},
          {},
          {}};
}

UpdateResult available(const QString& currentVersion, const Feed& feed) {
  return {UpdateResult::Kind::available,
          "Zephrimark Offload " + feed.versionText + " is available",
          "You have " + currentVersion +
              ". The download page opens in your browser; nothing is installed by itself.",
          feed.downloadPage,
          feed.versionText,
          feed.notes};
}

UpdateResult failed(const QString& why) {
  return {UpdateResult::Kind::failed, "The update check didn't work", why, {}, {}, {}};
}

QString sentenceFor(const DownloadFailure& failure) {
  switch (failure.kind) {
    case DownloadFailure::Kind::unreachable:
      return ended("The update server couldn't be reached: " + failure.reason);
    case DownloadFailure::Kind::untrusted:
      return ended("The update server couldn't prove who it is: " + failure.reason);
    case DownloadFailure::Kind::insecureRedirect:
      return "The server redirected to an address that isn't secure.";
    case DownloadFailure::Kind::tooManyRedirects:
      return "The server redirected too many times.";
    case DownloadFailure::Kind::badStatus:
      return "The update server answered with the error " + failure.reason + ".";
    case DownloadFailure::Kind::tooLarge:
      return "The update information is larger than it may be, so it was not used.";
  }
  return {};
}

}  // namespace Updates
