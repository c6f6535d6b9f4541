#include "Updates/AppUpdater.h"

#include <utility>

#include <QPointer>

namespace Updates {
namespace {

QUrl signatureOf(const QUrl& feed) {
  QString path = feed.path(QUrl::FullyEncoded);
  if (path.isEmpty()) path = "/";
  QUrl signature = feed;
  signature.setPath(path + ".sig", QUrl::TolerantMode);
  return signature;
}

std::optional<UpdatePlan> planFor(const UpdateConfiguration& configuration) {
  const QUrl feed(configuration.feedUrl, QUrl::StrictMode);
  const auto key = PublicKey::fromBase64(configuration.publicKey);
  const auto version = Version::parse(configuration.currentVersion);
  if (!configuration.feedUrl.startsWith("https://") || !feed.isValid() || feed.host().isEmpty() ||
      !key || !version) {
    return std::nullopt;
  }
  return UpdatePlan{feed, signatureOf(feed), *key, configuration.currentVersion, *version};
}

}  // namespace

AppUpdater::AppUpdater(const UpdateConfiguration& configuration, Transport transport)
    : plan_(planFor(configuration)), transport_(std::move(transport)) {}

AppUpdater::~AppUpdater() = default;

void AppUpdater::checkForUpdates() {
  if (!canCheckForUpdates()) return;
  check_ = std::make_unique<UpdateCheck>(*plan_, transport_);
  QObject::connect(check_.get(), &UpdateCheck::finished, this, &AppUpdater::end);
  Q_EMIT canCheckForUpdatesChanged();
}

void AppUpdater::end(const UpdateResult& result) {
  // It is in the middle of its signal.
  check_.release()->deleteLater();
  const QPointer<AppUpdater> alive(this);
  Q_EMIT canCheckForUpdatesChanged();
  if (alive) Q_EMIT finished(result);
}

}  // namespace Updates
