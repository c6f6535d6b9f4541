#pragma once

#include "Updates/Version.h"

#include <optional>

#include <QByteArray>
#include <QString>
#include <QUrl>

namespace Updates {

/// What the feed says about the newest release. Nothing of it is to be believed before the
/// signature over the bytes that it was read from was found good.
struct Feed {
  QString versionText;  ///< as it stands there
  Version version;
  QUrl downloadPage;  ///< valid and with a host, of any scheme
  QString notes;      ///< what is new, as plain text; may be empty
};

/// Reads the JSON object {"version", "downloadPage", "notes"}, all texts; the notes may be missing,
/// and other fields are ignored. None when anything else is wrong. Any thread.
[[nodiscard]] std::optional<Feed> parseFeed(const QByteArray& json);

}  // namespace Updates
