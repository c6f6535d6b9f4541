#include "ZephrimarkOffload/Desktop/LauncherProgress.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string_view>

#include <QDBusMessage>
#include <QVariantMap>

namespace ZephrimarkOffload {
namespace {

using namespace std::chrono_literals;

constexpr std::string_view kEntry = "application://com.zephrimark.offload.desktop";

// Launchers expect each entry at a path of its own, which by custom ends in this hash of its name.
constexpr std::uint32_t hashOf(std::string_view text) {
  std::uint32_t hash = 5381;
  for (const char character : text) {
    hash = hash * 33 + static_cast<unsigned char>(character);
  }
  return hash;
}

}  // namespace

LauncherProgress::LauncherProgress(const QDBusConnection& session) : session_(session) {
  pause_.setSingleShot(true);
  pause_.setInterval(200ms);
  QObject::connect(&pause_, &QTimer::timeout, &pause_, [this] {
    if (wanted_ != shown_) send();
  });
}

LauncherProgress::~LauncherProgress() {
  set(std::nullopt);
}

void LauncherProgress::set(std::optional<double> fraction) {
  wanted_.reset();
  if (fraction && *fraction > 0) wanted_ = std::min(*fraction, 1.0);
  if (wanted_ == shown_) return;
  if (!wanted_ || !pause_.isActive()) send();
}

void LauncherProgress::send() {
  shown_ = wanted_;
  pause_.start();
  if (!session_.isConnected()) return;
  QDBusMessage update = QDBusMessage::createSignal(
      QStringLiteral("/com/canonical/unity/launcherentry/%1").arg(hashOf(kEntry)),
      QStringLiteral("com.canonical.Unity.LauncherEntry"), QStringLiteral("Update"));
  update << QString::fromLatin1(kEntry.data(), kEntry.size())
         << QVariantMap{{QStringLiteral("progress"), shown_.value_or(0)},
                        {QStringLiteral("progress-visible"), shown_.has_value()}};
  // Ignored on purpose when it could not be sent: the window shows the progress, too.
  static_cast<void>(session_.send(update));
}

}  // namespace ZephrimarkOffload
