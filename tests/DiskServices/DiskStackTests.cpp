#include "DiskServices/UDisks.h"
#include "PlatformKit/Posix/HelperOpener.h"
#include "tests/DiskServices/Machine.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <functional>
#include <optional>
#include <thread>

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

namespace DiskServices::Testing {
namespace {

using PlatformKit::Path;
using PlatformKit::PrivilegedOpener;
using PlatformKit::UniqueFd;
using PlatformKit::Testing::pattern;
using PlatformKit::Testing::readFile;
using PlatformKit::Testing::TempFolder;
using PlatformKit::Testing::writeFile;
using namespace std::chrono_literals;

constexpr unsigned kOrdinaryUser = 65534;
constexpr const char* kActions = "/usr/share/polkit-1/actions";
constexpr const char* kUdisksd = "/usr/libexec/udisks2/udisksd";
constexpr const char* kPolkitd = "/usr/lib/polkit-1/polkitd";

std::optional<std::string> whatIsMissing() {
  if (geteuid() != 0) return "Only the administrator can start the system's services.";
  for (const auto& [program, package] :
       {std::pair("/usr/bin/dbus-daemon", "dbus"), std::pair(kPolkitd, "polkitd"),
        std::pair(kUdisksd, "udisks2"), std::pair("/usr/bin/python3", "python3")}) {
    if (access(program, X_OK) != 0) return std::string("Needs the package ") + package + ".";
  }
  // Mounts and devices of the real machine stay out of sight, and ours out of its.
  if (unshare(CLONE_NEWNS | CLONE_NEWNET) != 0) return "Needs the right to make namespaces.";
  return std::nullopt;
}

void makeEmpty(const char* folder) {
  ASSERT_EQ(mount("tmpfs", folder, "tmpfs", 0, "mode=755"), 0) << folder;
}

void waitForService(const char* name) {
  sd_bus* bus = nullptr;
  ASSERT_GE(sd_bus_open_system(&bus), 0);
  const auto deadline = std::chrono::steady_clock::now() + 20s;
  int there = 0;
  while (there == 0 && std::chrono::steady_clock::now() < deadline) {
    sd_bus_message* reply = nullptr;
    ASSERT_GE(sd_bus_call_method(bus, "org.freedesktop.DBus", "/", "org.freedesktop.DBus",
                                 "NameHasOwner", nullptr, &reply, "s", name),
              0);
    sd_bus_message_read(reply, "b", &there);
    sd_bus_message_unref(reply);
    if (there == 0) std::this_thread::sleep_for(5ms);
  }
  sd_bus_close_unref(bus);
  ASSERT_NE(there, 0) << name;
}

/// The desktop's real services, on a machine whose only disk is a loop device with an ext4 volume.
class DiskStack : public ::testing::Test {
 protected:
  void SetUp() override {
    if (const auto missing = whatIsMissing()) GTEST_SKIP() << *missing;
    ASSERT_EQ(mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr), 0);
    for (const char* folder : {"/run", "/var/lib/udisks2"}) makeEmpty(folder);
    std::filesystem::permissions(folder_.path(), std::filesystem::perms(0755));
    installPolicies();
    attachCard();
    if (IsSkipped() || HasFatalFailure()) return;
    // Where everybody looks for it who may not trust the environment.
    std::filesystem::create_directories("/run/dbus");
    bus_.emplace("/run/dbus/system_bus_socket");
    polkit_.emplace(std::vector<std::string>{kPolkitd, "--no-debug"});
    waitForService("org.freedesktop.PolicyKit1");
    udisks_.emplace(std::vector<std::string>{kUdisksd});
    waitForService("org.freedesktop.UDisks2");
  }

  void TearDown() override {
    for (const char* place : {"a", "b"}) umount2((folder_.path() / place).c_str(), MNT_DETACH);
    udisks_.reset();
    polkit_.reset();
    bus_.reset();
    for (const char* folder : {kActions, "/var/lib/udisks2", "/run"}) umount2(folder, MNT_DETACH);
  }

  // Ours beside those of the system, for the helper that was built.
  void installPolicies() const {
    const Path copy = folder_.path() / "actions";
    std::filesystem::copy(kActions, copy);
    std::string policy = readFile(ZEPHRIMARK_POLICY);
    const std::string variable = "@ZEPHRIMARK_DEVICE_HELPER@";
    policy.replace(policy.find(variable), variable.size(), ZEPHRIMARK_DEVICE_HELPER);
    writeFile(copy / "com.zephrimark.offload.policy", policy);
    ASSERT_EQ(mount(copy.c_str(), kActions, nullptr, MS_BIND, nullptr), 0);
  }

  void attachCard() {
    const Path image = folder_.path() / "card";
    writeFile(image, pattern(4 << 20));
    const std::string format = "mkfs.ext4 -q -F " + image.native();
    // NOLINTNEXTLINE(concurrency-mt-unsafe): one thread
    ASSERT_EQ(std::system(format.c_str()), 0);
    try {
      card_.emplace(image);
    } catch (const std::system_error& error) {
      GTEST_SKIP() << "Needs loop devices: " << error.what();
    }
    struct stat status {};
    ASSERT_EQ(stat(card_->path().c_str(), &status), 0);
    // What the device manager would have found out; UDisks2 reads only its notes.
    writeFile("/run/udev/data/b" + std::to_string(major(status.st_rdev)) + ":" +
                  std::to_string(minor(status.st_rdev)),
              "I:1\nE:ID_FS_USAGE=filesystem\nE:ID_FS_TYPE=ext4\nE:ID_FS_VERSION=1.0\nV:1\n");
  }

  // What an ordinary user gets whose prompt is answered so ("allow", "dismiss"; empty: there is
  // nobody to ask). The first line the user was asked with goes to `asked_`.
  std::optional<Kind> openAsUser(PrivilegedOpener& opener, const std::string& reaction) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) return std::nullopt;
    const UniqueFd wait(ends[0]);
    UniqueFd go(ends[1]);
    const pid_t child = fork();
    if (child == 0) {
      go = UniqueFd(close(go.release()));  // the end of the parent's is what it waits for
      _exit(becomeUserAndOpen(opener, wait.get()));
    }
    std::optional<Daemon> agent;
    if (!reaction.empty()) agent = startAgent(child, reaction);
    go = UniqueFd();
    return std::nullopt;
  }

  const TempFolder folder_;
  std::optional<LoopDevice> card_;
  std::optional<PrivateBus> bus_;
  std::optional<Daemon> polkit_;
  std::optional<Daemon> udisks_;
  std::string asked_;
};

}  // namespace
}  // namespace DiskServices::Testing
