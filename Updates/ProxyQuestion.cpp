#include "Updates/ProxyQuestion.h"

#include <mutex>
#include <system_error>
#include <thread>

#include <QNetworkProxyFactory>

namespace Updates {

// Who waits for the answer; shared with the thread, which may stay behind.
struct ProxyQuestion::Asker {
  std::mutex mutex;
  ProxyQuestion* question;  // none when nobody waits any more
};

ProxyQuestion::ProxyQuestion(const QUrl& target) : asker_(std::make_shared<Asker>()) {
  asker_->question = this;
  try {
    // Nobody can wait for it: a script's server may never answer.
    std::thread([asker = asker_, target] {
      const QNetworkProxy proxy =
          QNetworkProxyFactory::proxyForQuery(QNetworkProxyQuery(target)).value(0);
      const std::lock_guard lock(asker->mutex);
      if (asker->question != nullptr) asker->question->answer(proxy);
    }).detach();
  } catch (const std::system_error&) {
    answer(QNetworkProxy::NoProxy);
  }
}

ProxyQuestion::~ProxyQuestion() {
  const std::lock_guard lock(asker_->mutex);
  asker_->question = nullptr;
}

void ProxyQuestion::answer(const QNetworkProxy& proxy) {
  QMetaObject::invokeMethod(
      this, [this, proxy] { Q_EMIT answered(proxy); }, Qt::QueuedConnection);
}

}  // namespace Updates
