#include "Updates/Download.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QUrl>

namespace Updates {
namespace {

constexpr int kOk = 200;

QNetworkRequest hardened(QNetworkRequest request) {
  request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                       QNetworkRequest::ManualRedirectPolicy);
  request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
  request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
  for (const auto attribute :
       {QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::CookieSaveControlAttribute,
        QNetworkRequest::AuthenticationReuseAttribute}) {
    request.setAttribute(attribute, QNetworkRequest::Manual);
  }
  // Two small documents gain nothing from it.
  request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
  // The bytes that are checked are the bytes that travelled, and nothing is unpacked unchecked.
  request.setRawHeader("Accept-Encoding", "identity");
  return request;
}

}  // namespace

void Download::ReplyDeleter::operator()(QNetworkReply* reply) const {
  // Often called from a signal of the reply itself.
  reply->disconnect();
  reply->abort();
  reply->deleteLater();
}

Download::Download(QNetworkAccessManager& network, const QNetworkRequest& request, qint64 largest)
    : network_(network), request_(hardened(request)), largest_(largest) {
  start();
}

Download::~Download() = default;

void Download::start() {
  document_.clear();
  reply_.reset(network_.get(request_));
  // A server that sends without end fills no memory; one byte more tells that there is too much.
  reply_->setReadBufferSize(largest_ + 1);
  QObject::connect(reply_.get(), &QNetworkReply::readyRead, this, &Download::read);
  QObject::connect(reply_.get(), &QNetworkReply::finished, this, &Download::finish);
}

void Download::read() {
  document_ += reply_->read(largest_ + 1 - document_.size());
  if (document_.size() > largest_) fail(DownloadFailure::Kind::tooLarge);
}

void Download::finish() {
  read();
  if (!reply_) return;  // it was too much
  const int status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
  const QUrl target = reply_->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
  if (reply_->error() == QNetworkReply::SslHandshakeFailedError) {
    fail(DownloadFailure::Kind::untrusted, reply_->errorString());
  } else if (!target.isEmpty()) {
    follow(reply_->url().resolved(target));
  } else if (status != 0 && status != kOk) {
    fail(DownloadFailure::Kind::badStatus, QString::number(status));
  } else if (status == 0 || reply_->error() != QNetworkReply::NoError) {
    fail(DownloadFailure::Kind::unreachable, reply_->errorString());
  } else {
    reply_.reset();
    Q_EMIT received(document_);
  }
}

void Download::follow(const QUrl& target) {
  if (target.scheme() != "https" || target.host().isEmpty()) {
    fail(DownloadFailure::Kind::insecureRedirect);
  } else if (redirects_ == kMostRedirects) {
    fail(DownloadFailure::Kind::tooManyRedirects);
  } else {
    ++redirects_;
    request_.setUrl(target);
    start();
  }
}

void Download::fail(DownloadFailure::Kind kind, const QString& reason) {
  reply_.reset();
  Q_EMIT failed({kind, reason});
}

}  // namespace Updates
