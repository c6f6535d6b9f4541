#include "Updates/UpdateConfiguration.h"

namespace Updates {

UpdateConfiguration defaultConfiguration() {
  return {QStringLiteral(ZEPHRIMARK_UPDATE_FEED), QByteArrayLiteral(ZEPHRIMARK_UPDATE_KEY),
          QStringLiteral(ZEPHRIMARK_VERSION)};
}

}  // namespace Updates
