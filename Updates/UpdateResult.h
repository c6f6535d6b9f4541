#pragma once

#include "Updates/Download.h"
#include "Updates/Feed.h"

#include <QString>
#include <QUrl>

namespace Updates {

/// How a check ended, with the sentences for a dialog. All texts are plain text in the user's
/// language. A value; the functions are for any thread.
struct UpdateResult {
  enum class Kind { upToDate, available, failed };

  Kind kind = Kind::failed;
  QString title;
  QString message;
  // The others are empty unless an update is available.
  QUrl downloadPage;  ///< an https address
  QString newVersion;
  QString notes;  ///< what is new; may be empty
};

/// The running version is the newest one.
[[nodiscard]] UpdateResult upToDate(const QString& currentVersion);

/// The feed names a newer version; its download page must be an https address.
[[nodiscard]] UpdateResult available(const QString& currentVersion, const Feed& feed);

/// The check ended without an answer; `why` is a sentence.
[[nodiscard]] UpdateResult failed(const QString& why);

/// A sentence for a download that did not work.
[[nodiscard]] QString sentenceFor(const DownloadFailure& failure);

}  // namespace Updates
