#pragma once

#include "Updates/Download.h"
#include "Updates/ProxyLookup.h"
#include "Updates/Signature.h"
#include "Updates/UpdateResult.h"
#include "Updates/Version.h"

#include <chrono>
#include <memory>
#include <optional>

#include <QByteArray>
#include <QNetworkAccessManager>
#include <QObject>
#include <QSslConfiguration>
#include <QString>
#include <QTimer>
#include <QUrl>

namespace Updates {

/// A configuration that was found good: all that a check needs to know. A value.
struct UpdatePlan {
  QUrl feed;                   ///< an https address
  QUrl signature;              ///< beside the feed, with ".sig" appended
  PublicKey key;               ///< whose signature over the feed counts
  QString currentVersionText;  ///< as people know it
  Version currentVersion;      ///< the same, to compare
};

/// How servers are spoken to.
struct Transport {
  /// For the feed and its signature together.
  std::chrono::milliseconds patience = std::chrono::seconds(15);
  /// Which certificates count; the computer's own choice when there is none.
  std::optional<QSslConfiguration> tls;
};

/// One check from the first request to its result: the way to the server, the feed, its signature,
/// the comparison of versions. It keeps nothing and tells the server nothing but what a download
/// does. Main thread; needs a running event loop. May be destroyed at any time but in a handler of
/// its signal; requests end then.
class UpdateCheck final : public QObject {
  Q_OBJECT

 public:
  /// Starts at once, and tells the result later. The feed is fetched, then its signature; nothing
  /// in the feed is looked at before the signature was found good.
  UpdateCheck(UpdatePlan plan, const Transport& transport);

 Q_SIGNALS:
  /// Comes once, from the event loop: also when there is no network, the time is over or what came
  /// is not to be believed. The check does nothing any more then.
  void finished(const UpdateResult& result);

 private:
  void fetchFeed();
  void fetchSignature(const QByteArray& feed);
  void judge(const QByteArray& feed, const QByteArray& signature);
  void giveUp();
  [[nodiscard]] std::unique_ptr<Download> start(const QUrl& url, qint64 largest);
  void end(const UpdateResult& result);

  UpdatePlan plan_;
  QNetworkRequest request_;
  QTimer deadline_;
  QNetworkAccessManager network_;
  ProxyLookup proxy_;
  std::unique_ptr<Download> feed_;
  std::unique_ptr<Download> signature_;
};

}  // namespace Updates
