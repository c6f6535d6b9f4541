#pragma once

#include <memory>

#include <QNetworkProxy>
#include <QObject>
#include <QUrl>

namespace Updates {

/// Asks the computer which proxy leads to an address. That may read settings over a bus, or fetch a
/// script from the network and run it, so it happens on a thread of its own. Main thread; needs a
/// running event loop. May be destroyed before the answer, which is dropped then; the thread stays
/// behind until it has it.
class ProxyLookup final : public QObject {
  Q_OBJECT

 public:
  /// Asks at once for the proxy to `target`.
  explicit ProxyLookup(const QUrl& target);
  ~ProxyLookup() override;

 Q_SIGNALS:
  /// Comes once, unless the lookup never ends. No proxy when there is no thread to be had.
  void answered(const QNetworkProxy& proxy);

 private:
  struct Asker;

  void answer(const QNetworkProxy& proxy);

  std::shared_ptr<Asker> asker_;
};

}  // namespace Updates
