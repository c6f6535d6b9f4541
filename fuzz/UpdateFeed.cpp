#include "Updates/Feed.h"
#include "fuzz/Input.h"

#include <QJsonDocument>
#include <QJsonObject>

/// Input: the feed of updates.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const QByteArray text(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
  const auto feed = Updates::parseFeed(text);
  if (!feed) return 0;
  Fuzz::require(feed->downloadPage.isValid() && !feed->downloadPage.host().isEmpty(),
                "the page has a host");
  const auto version = Updates::Version::parse(feed->versionText);
  Fuzz::require(version && !version->isBefore(feed->version) && !feed->version.isBefore(*version),
                "the version is that of its text");

  const QJsonObject written{{"version", feed->versionText},
                            {"downloadPage", feed->downloadPage.toString(QUrl::FullyEncoded)},
                            {"notes", feed->notes}};
  const auto again = Updates::parseFeed(QJsonDocument(written).toJson());
  Fuzz::require(again && again->versionText == feed->versionText &&
                    again->downloadPage.host() == feed->downloadPage.host() &&
                    again->notes == feed->notes,
                "what is written reads the same");
  return 0;
}
