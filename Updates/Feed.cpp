#include "Updates/Feed.h"

#include <utility>

#include <QJsonDocument>
#include <QJsonObject>

namespace Updates {

std::optional<Feed> parseFeed(const QByteArray& json) {
  const QJsonObject object = QJsonDocument::fromJson(json).object();  // empty for anything else
  const QString versionText = object["version"].toString();
  auto version = Version::parse(versionText);
  const QUrl downloadPage(object["downloadPage"].toString(), QUrl::StrictMode);
  const QJsonValue notes = object["notes"];
  if (!version || !downloadPage.isValid() || downloadPage.host().isEmpty() ||
      !(notes.isString() || notes.isUndefined())) {
    return std::nullopt;
  }
  return Feed{versionText, std::move(*version), downloadPage, notes.toString()};
}

}  // namespace Updates
