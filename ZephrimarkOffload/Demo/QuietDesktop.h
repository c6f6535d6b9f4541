#pragma once

#include "ZephrimarkOffload/Model/Desktop.h"

namespace ZephrimarkOffload::Demo {

/// A desktop without services, so that a demonstration disturbs nobody.
class QuietDesktop final : public Desktop {
 public:
  void requestNotificationPermission() override {}
  void notify(const QString&, const QString&) override {}
  void setBadge(std::optional<double>) override {}
  void inhibitSleep(const QString&) override {}
  void allowSleep() override {}
};

}  // namespace ZephrimarkOffload::Demo
