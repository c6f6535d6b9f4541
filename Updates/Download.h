#pragma once

#include <memory>

#include <QByteArray>
#include <QNetworkRequest>
#include <QObject>
#include <QString>

class QNetworkAccessManager;
class QNetworkReply;

namespace Updates {

/// Why a document could not be fetched.
struct DownloadFailure {
  enum class Kind {
    unreachable,       ///< no connection, or it broke; `reason` says why
    untrusted,         ///< no TLS connection to the right server; `reason` says why
    insecureRedirect,  ///< to an address that is not https
    tooManyRedirects,  ///< more than kMostRedirects
    badStatus,         ///< `reason` is the HTTP status, such as "404"
    tooLarge,          ///< more than was allowed
  };

  Kind kind;
  QString reason;
};

/// Fetches one small document over https, redirects included, with no cookies, cache or log-ins.
/// Takes as long as the server does: whoever started it has to give up, by destroying it, but not
/// in a handler of its signals. Main thread; needs a running event loop.
class Download final : public QObject {
  Q_OBJECT

 public:
  /// One more is a failure.
  static constexpr int kMostRedirects = 5;

  /// Starts at once. A document, or the text that comes with a redirect, of more than `largest`
  /// bytes is a failure. `network` outlives this object.
  Download(QNetworkAccessManager& network, const QNetworkRequest& request, qint64 largest);
  ~Download() override;

 Q_SIGNALS:
  /// The whole document, byte for byte. Exactly one of the two signals comes, and once.
  void received(const QByteArray& document);
  void failed(const DownloadFailure& failure);

 private:
  void start();
  void read();
  void finish();
  void follow(const QUrl& target);
  void fail(DownloadFailure::Kind kind, const QString& reason = {});

  struct ReplyDeleter {
    void operator()(QNetworkReply* reply) const;
  };

  QNetworkAccessManager& network_;
  QNetworkRequest request_;
  qint64 largest_;
  int redirects_ = 0;
  QByteArray document_;
  std::unique_ptr<QNetworkReply, ReplyDeleter> reply_;
};

}  // namespace Updates
