#pragma once

#include <QByteArray>
#include <QString>

namespace Updates {

/// Where updates are looked up and whom to believe. A value as it was configured: AppUpdater finds
/// out whether it is any good.
struct UpdateConfiguration {
  QString feedUrl;         ///< an https address; its signature lies beside it, with ".sig" appended
  QByteArray publicKey;    ///< base64 of the 32 raw bytes of an Ed25519 key
  QString currentVersion;  ///< of this copy, as Version reads it
};

/// What this build was configured with; without a feed and a key unless the build got them.
[[nodiscard]] UpdateConfiguration defaultConfiguration();

}  // namespace Updates
