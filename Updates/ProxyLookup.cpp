#include "Updates/ProxyLookup.h"

#include <mutex>
#include <system_error>
#include <thread>

#include <QNetworkProxyFactory>

namespace Updates {

// Who waits for the answer; shared with the thread, which may stay behind.
struct ProxyLookup::Asker {
  std::mutex mutex;
  ProxyLookup* lookup;  // none when nobody waits any more
};

ProxyLookup::ProxyLookup(const QUrl& target) : asker_(std::make_shared<Asker>()) {
  asker_->lookup = this;
  try {
    // Nobody can wait for it: a script's server may never answer.
    std::thread([asker = asker_, target] {
      const QNetworkProxy proxy =
          QNetworkProxyFactory::proxyForQuery(QNetworkProxyQuery(target)).value(0);
      const std::lock_guard lock(asker->mutex);
      if (asker->lookup != nullptr) asker->lookup->answer(proxy);
    }).detach();
  } catch (const std::system_error&) {
    answer(QNetworkProxy::NoProxy);
  }
}

ProxyLookup::~ProxyLookup() {
  const std::lock_guard lock(asker_->mutex);
  asker_->lookup = nullptr;
}

void ProxyLookup::answer(const QNetworkProxy& proxy) {
  QMetaObject::invokeMethod(
      this, [this, proxy] { Q_EMIT answered(proxy); }, Qt::QueuedConnection);
}

}  // namespace Updates
