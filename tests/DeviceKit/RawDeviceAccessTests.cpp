#include "DeviceKit/DeviceError.h"
#include "DeviceKit/RawDeviceAccess.h"
#include "PlatformKit/Linux/LinuxRawDevices.h"
#include "PlatformKit/Testing/FakeRawDevices.h"
#include "PlatformKit/Testing/TempFolder.h"

#include <cerrno>
#include <functional>

#include <gtest/gtest.h>
#include <unistd.h>

namespace DeviceKit {
namespace {

using PlatformKit::PrivilegedOpener;
using Kind = PrivilegedOpener::Answer::Kind;

class Answering final : public PrivilegedOpener {
 public:
  explicit Answering(Kind kind) : kind_(kind) {}
  Answer openReadOnly(const PlatformKit::Path& /*device*/) override {
    ++asked;
    // Any descriptor will do: the fake devices do not look at it.
    return {kind_, PlatformKit::UniqueFd(kind_ == Kind::opened ? dup(0) : -1)};
  }
  int asked = 0;

 private:
  Kind kind_;
};

std::string failureOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const DeviceError& error) {
    return error.what();
  }
  return "none";
}

TEST(RawDeviceAccess, asksForAuthorizationOnlyWhenAPlainOpenIsNotAllowed) {
  PlatformKit::Testing::FakeRawDevices devices;
  auto& card = devices.add("/dev/card", "content");
  devices.setAdopted("/dev/card");
  Answering opener(Kind::opened);
  const RawDeviceAccess access(devices, {&opener});
  EXPECT_NE(access.openReadOnly("/dev/card"), nullptr);
  EXPECT_EQ(opener.asked, 0);
  EXPECT_EQ(failureOf([&] { static_cast<void>(access.openReadOnly("/dev/none")); }),
            "Could not open /dev/none: No such file or directory");
  EXPECT_EQ(opener.asked, 0);
  for (const int error : {EACCES, EPERM}) {
    card.openError = error;
    EXPECT_NE(access.openReadOnly("/dev/card"), nullptr);
  }
  EXPECT_EQ(opener.asked, 2);
}

TEST(RawDeviceAccess, asksTheNextOneOnlyWhenThereIsNobodyToAskAndTakesANoForFinal) {
  PlatformKit::Testing::FakeRawDevices devices;
  devices.add("/dev/card", "content").openError = EACCES;
  devices.setAdopted("/dev/card");
  const auto denied = "Authorization to read /dev/card was denied.";
  Answering absent(Kind::unavailable);
  Answering no(Kind::declined);
  Answering yes(Kind::opened);
  const auto ask = [&](std::vector<PrivilegedOpener*> openers) {
    const RawDeviceAccess access(devices, std::move(openers));
    return failureOf([&] { static_cast<void>(access.openReadOnly("/dev/card")); });
  };
  EXPECT_EQ(ask({&absent, &yes}), "none");
  EXPECT_EQ(yes.asked, 1);
  EXPECT_EQ(ask({&absent, &no, &yes}), denied);
  EXPECT_EQ(yes.asked, 1);
  EXPECT_EQ(ask({&absent}), denied);
  EXPECT_EQ(ask({}), denied);
  EXPECT_EQ(devices.openDevices(), 0);
}

}  // namespace
}  // namespace DeviceKit
