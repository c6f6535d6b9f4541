#pragma once

#include "tests/DiskServices/Machine.h"

#include <optional>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

namespace DiskServices::Testing {

/// A bus of our own, and on it, if wanted, a UDisks2 that is made of a file.
class MockService : public ::testing::Test {
 protected:
  void SetUp() override {
    if (access("/usr/bin/dbus-daemon", X_OK) != 0) GTEST_SKIP() << "Needs the package dbus.";
    bus_.emplace(folder_.path() / "bus");
  }

  /// After it, the service knows these block devices and drives; see mock_udisks.py.
  void startService(const std::string& objects) {
    know(objects);
    PlatformKit::Testing::writeFile(log_, "");
    const PlatformKit::Path script = PlatformKit::Path(ZEPHRIMARK_TEST_SCRIPTS) / "mock_udisks.py";
    service_.emplace(std::vector<std::string>{"/usr/bin/python3", script, state_, log_});
    const std::string line = service_->readLine();
    if (line == "MISSING") GTEST_SKIP() << "Needs the packages python3-dbus and python3-gi.";
    ASSERT_EQ(line, "READY");
  }

  /// From now on it knows these instead.
  void know(const std::string& objects) const {
    PlatformKit::Testing::writeFile(state_, "{" + objects + "}");
  }

  /// What it was called, as "sdb1.Unmount".
  [[nodiscard]] std::multiset<std::string> calls() const {
    std::multiset<std::string> calls;
    std::istringstream log(PlatformKit::Testing::readFile(log_));
    for (std::string line; std::getline(log, line);) calls.insert(line);
    return calls;
  }

  const PlatformKit::Testing::TempFolder folder_;
  const PlatformKit::Path state_ = folder_.path() / "state";
  const PlatformKit::Path log_ = folder_.path() / "log";
  std::optional<PrivateBus> bus_;
  std::optional<Daemon> service_;
};

}  // namespace DiskServices::Testing
