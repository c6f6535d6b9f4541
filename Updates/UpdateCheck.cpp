#include "Updates/UpdateCheck.h"

#include "Updates/Feed.h"

#include <utility>

#include <QCoreApplication>

namespace Updates {
namespace {

constexpr qint64 kLargestFeed = 65536;
constexpr qint64 kLargestSignature = 1024;

QString notSigned() {
  return QCoreApplication::translate(
      "Updates", "The update information isn't signed by Zephrimark, so it was not used.");
}

// A signature that is not there, or that no signature can be as large as, is none. Everything else
// that can go wrong says nothing about who signed.
bool meansNoSignature(const DownloadFailure& failure) {
  return failure.kind == DownloadFailure::Kind::tooLarge ||
         (failure.kind == DownloadFailure::Kind::badStatus && failure.reason == "404");
}

}  // namespace

UpdateCheck::UpdateCheck(UpdatePlan plan, const Transport& transport)
    : plan_(std::move(plan)), proxy_(plan_.feed) {
  request_.setHeader(QNetworkRequest::UserAgentHeader,
                     "Zephrimark Offload/" + plan_.currentVersionText);
  if (transport.tls) request_.setSslConfiguration(*transport.tls);
  deadline_.setSingleShot(true);
  QObject::connect(&deadline_, &QTimer::timeout, this, &UpdateCheck::giveUp);
  deadline_.start(transport.patience);
  QObject::connect(&proxy_, &ProxyLookup::answered, this, [this](const QNetworkProxy& proxy) {
    network_.setProxy(proxy);
    fetchFeed();
  });
}

void UpdateCheck::fetchFeed() {
  feed_ = start(plan_.feed, kLargestFeed);
  QObject::connect(feed_.get(), &Download::received, this, &UpdateCheck::fetchSignature);
  QObject::connect(feed_.get(), &Download::failed, this,
                   [this](const DownloadFailure& failure) { end(failed(sentenceFor(failure))); });
}

void UpdateCheck::fetchSignature(const QByteArray& feed) {
  signature_ = start(plan_.signature, kLargestSignature);
  QObject::connect(signature_.get(), &Download::received, this,
                   [this, feed](const QByteArray& signature) { judge(feed, signature); });
  QObject::connect(signature_.get(), &Download::failed, this,
                   [this](const DownloadFailure& failure) {
                     end(failed(meansNoSignature(failure) ? notSigned() : sentenceFor(failure)));
                   });
}

void UpdateCheck::judge(const QByteArray& feed, const QByteArray& signature) {
  if (!plan_.key.hasSigned(feed, signature)) {
    end(failed(notSigned()));
    return;
  }
  const auto news = parseFeed(feed);
  if (!news) {
    end(failed(
        QCoreApplication::translate("Updates", "The update information couldn't be understood.")));
  } else if (news->downloadPage.scheme() != "https") {
    end(failed(QCoreApplication::translate(
        "Updates",
        "The update information names a download page that isn't secure, so it was not used.")));
  } else if (plan_.currentVersion.isBefore(news->version)) {
    end(available(plan_.currentVersionText, *news));
  } else {
    end(upToDate(plan_.currentVersionText));
  }
}

void UpdateCheck::giveUp() {
  proxy_.disconnect(this);
  signature_.reset();
  feed_.reset();
  end(failed(QCoreApplication::translate("Updates", "The answer took too long.")));
}

std::unique_ptr<Download> UpdateCheck::start(const QUrl& url, qint64 largest) {
  request_.setUrl(url);
  return std::make_unique<Download>(network_, request_, largest);
}

void UpdateCheck::end(const UpdateResult& result) {
  deadline_.stop();
  Q_EMIT finished(result);
}

}  // namespace Updates
