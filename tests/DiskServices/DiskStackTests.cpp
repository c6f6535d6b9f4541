#include "DiskServices/UDisks.h"
#include "PlatformKit/Posix/HelperOpener.h"
#include "tests/DiskServices/Machine.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <thread>

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/socket.h>
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
constexpr int kWrong = 9;  // no Kind
constexpr const char* kActions = "/usr/share/polkit-1/actions";
constexpr const char* kUdisksd = "/usr/libexec/udisks2/udisksd";
constexpr const char* kUdevd = "/lib/systemd/systemd-udevd";
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
    if (mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
      GTEST_SKIP() << "Mounts cannot be kept private here: the root folder is not a mount.";
    }
    for (const char* folder : {"/run", "/var/lib"}) mountAt(folder, "tmpfs", "tmpfs", 0);
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
    deviceManager_.reset();
    udisks_.reset();
    polkit_.reset();
    bus_.reset();
    // Only what was mounted here: without a namespace of its own it would be the machine's.
    for (; !mounted_.empty(); mounted_.pop_back()) umount2(mounted_.back().c_str(), MNT_DETACH);
  }

  void mountAt(const Path& place, const char* source, const char* type, unsigned long flags) {
    ASSERT_EQ(mount(source, place.c_str(), type, flags, nullptr), 0) << place;
    mounted_.push_back(place);
  }

  // Ours beside those of the system, for the helper that was built.
  void installPolicies() {
    const Path copy = folder_.path() / "actions";
    std::filesystem::copy(kActions, copy);
    std::string policy = readFile(ZEPHRIMARK_POLICY);
    const std::string variable = "@ZEPHRIMARK_DEVICE_HELPER@";
    policy.replace(policy.find(variable), variable.size(), helper_.native());
    writeFile(copy / "com.zephrimark.offload.policy", policy);
    mountAt(kActions, copy.c_str(), nullptr, MS_BIND);
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

  // The device manager, which UDisks2 waits for when it unmounts. Here /dev and the notes it
  // changes are ours, so that nothing of the machine changes.
  void startDeviceManager() {
    const Path devices = folder_.path() / "dev";
    std::filesystem::create_directory(devices);
    ASSERT_EQ(mount("tmpfs", devices.c_str(), "tmpfs", 0, nullptr), 0);
    for (const std::string& name : {std::string("null"), std::string("urandom"), card_->name()}) {
      struct stat status {};
      ASSERT_EQ(stat(("/dev/" + name).c_str(), &status), 0);
      ASSERT_EQ(mknod((devices / name).c_str(), status.st_mode, status.st_rdev), 0);
    }
    mountAt("/dev", devices.c_str(), nullptr, MS_MOVE);
    deviceManager_.emplace(std::vector<std::string>{kUdevd});
    const auto deadline = std::chrono::steady_clock::now() + 10s;
    while (access("/run/udev/control", F_OK) != 0 && std::chrono::steady_clock::now() < deadline) {
      std::this_thread::sleep_for(5ms);
    }
    ASSERT_EQ(access("/run/udev/control", F_OK), 0);
  }

  // What an ordinary user gets whose prompt is answered so ("allow", "dismiss"; empty: there is
  // nobody to ask). `asked_` is what the user was asked.
  Kind openAsUser(PrivilegedOpener& opener, const std::string& reaction) {
    const int status = runAsUser([&] { return openAndLook(opener); }, reaction);
    EXPECT_LT(status, kWrong);
    return static_cast<Kind>(status);
  }

  // Mounts the card with one file on it.
  void insertCard() {
    std::filesystem::create_directory(mountPoint_);
    ASSERT_EQ(mount(card_->path().c_str(), mountPoint_.c_str(), "ext4", 0, nullptr), 0);
    writeFile(mountPoint_ / "IMG_0001.CR3", "footage");
    std::filesystem::remove_all(mountPoint_ / "lost+found");
    ASSERT_EQ(umount(mountPoint_.c_str()), 0);
    mountAt(mountPoint_, card_->path().c_str(), "ext4", MS_RDONLY);
  }

  [[nodiscard]] bool isCardMounted() const {
    return readFile("/proc/self/mountinfo").find(card_->path().native() + " ") != std::string::npos;
  }

  // Copies the card into drive_ / "x" with the real program, which an ordinary user started.
  // Answers its exit status; `told_` is what it said.
  int offload(const std::vector<std::string>& options, const std::string& reaction) {
    std::filesystem::create_directory(drive_);
    std::filesystem::permissions(drive_, std::filesystem::perms(0777));
    const Path log = folder_.path() / "log";
    std::vector<std::string> command = {
        PlatformKit::Testing::programForEverybody(ZEPHRIMARK_PROGRAM, folder_),
        "offload",
        "--template",
        "x",
        mountPoint_,
        drive_};
    command.insert(command.end(), options.begin(), options.end());
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (std::string& word : command) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const UniqueFd output(open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
    const int status = runAsUser(
        [&] {
          dup2(output.get(), STDOUT_FILENO);
          dup2(output.get(), STDERR_FILENO);
          execv(arguments.front(), arguments.data());
          return kWrong;
        },
        reaction);
    told_ = readFile(log);
    return status;
  }

  // Runs the action in a process of its own, as an ordinary user who may not read the card, and
  // answers its exit status.
  int runAsUser(const std::function<int()>& action, const std::string& reaction) {
    std::array<int, 2> ends{};
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
    const UniqueFd ours(ends[0]);
    const UniqueFd theirs(ends[1]);
    const pid_t child = fork();
    if (child == 0) _exit(becomeUser(theirs.get()) ? action() : kWrong);
    char byte = 0;
    EXPECT_EQ(read(ours.get(), &byte, 1), 1);
    std::optional<Daemon> agent;
    if (!reaction.empty()) {
      const Path script = Path(ZEPHRIMARK_TEST_SCRIPTS) / "polkit_agent.py";
      agent.emplace(
          std::vector<std::string>{"/usr/bin/python3", script, std::to_string(child), reaction});
      EXPECT_EQ(agent->readLine(), "READY") << "needs python3-dbus and python3-gi";
    }
    EXPECT_EQ(write(ours.get(), &byte, 1), 1);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status)) << status;
    if (agent) {
      // Whoever was asked has said so by now; nobody may have been.
      agent->end();
      asked_ = agent->readLine();
    }
    return WEXITSTATUS(status);
  }

  // Returns once somebody is there to answer the prompt.
  bool becomeUser(int socket) const {
    char byte = 0;
    return setgroups(0, nullptr) == 0 && setgid(kOrdinaryUser) == 0 && setuid(kOrdinaryUser) == 0 &&
           open(card_->path().c_str(), O_RDONLY | O_CLOEXEC) < 0 && write(socket, &byte, 1) == 1 &&
           read(socket, &byte, 1) == 1;
  }

  // Answers the kind, or kWrong.
  int openAndLook(PrivilegedOpener& opener) const {
    const auto before = openDescriptors();
    int result = kWrong;
    {
      const auto answer = opener.openReadOnly(card_->path());
      result = static_cast<int>(answer.kind);
      std::string magic(2, '\0');
      if (answer.kind == Kind::opened &&
          (pread(answer.descriptor.get(), magic.data(), 2, 1024 + 56) != 2 || magic != "\x53\xEF" ||
           write(answer.descriptor.get(), "x", 1) >= 0)) {
        result = kWrong;
      }
    }
    return openDescriptors() == before ? result : kWrong;
  }

  const TempFolder folder_;
  // Where an ordinary user can start it.
  const Path helper_ = PlatformKit::Testing::programForEverybody(ZEPHRIMARK_DEVICE_HELPER, folder_);
  const Path mountPoint_ = folder_.path() / "EOS_DIGITAL";
  const Path drive_ = folder_.path() / "drive";
  std::optional<LoopDevice> card_;
  std::optional<PrivateBus> bus_;
  std::optional<Daemon> polkit_;
  std::optional<Daemon> udisks_;
  std::optional<Daemon> deviceManager_;
  std::vector<Path> mounted_;
  std::string asked_;
  std::string told_;
};

TEST_F(DiskStack, AnOrdinaryUserReadsTheCardOnceTheyAuthenticate) {
  UDisks disks;
  EXPECT_EQ(openAsUser(disks, "allow"), Kind::opened);
  EXPECT_TRUE(asked_.starts_with("org.freedesktop.udisks2.open-device")) << asked_;
  EXPECT_EQ(openAsUser(disks, "dismiss"), Kind::declined);
  EXPECT_EQ(openAsUser(disks, ""), Kind::unavailable) << "nobody was asked";
}

// The real program, from the question for a password to the image on the drive.
TEST_F(DiskStack, AnOrdinaryUserGetsACardImageOnceTheyAuthenticate) {
  insertCard();
  EXPECT_EQ(offload({"--card-image"}, "dismiss"), 3);
  EXPECT_NE(told_.find("Authorization to read " + card_->path().native() + " was denied."),
            std::string::npos)
      << told_;
  EXPECT_TRUE(std::filesystem::is_empty(drive_ / "x"));

  EXPECT_EQ(offload({"--card-image"}, "allow"), 0) << told_;
  for (const auto& image : std::filesystem::directory_iterator(drive_ / "x/Card Image")) {
    EXPECT_EQ(readFile(image.path()), readFile(card_->path()));
  }
  EXPECT_FALSE(std::filesystem::is_empty(drive_ / "x/Card Image"));
}

TEST_F(DiskStack, TheCardIsEjectedOnceEverythingIsVerifiedUnlessItIsInUse) {
  if (access(kUdevd, X_OK) != 0) GTEST_SKIP() << "Needs the package udev.";
  startDeviceManager();
  if (HasFatalFailure()) return;
  insertCard();
  const struct {
    const char* reaction;
    bool inUse;
    const char* told;
  } kCases[] = {{"dismiss", false, "Permission to eject EOS_DIGITAL was declined. "},
                {"allow", true, "EOS_DIGITAL couldn't be ejected because a program is still using"},
                {"allow", false, "\nEjected EOS_DIGITAL.\n"}};
  for (const auto& [reaction, inUse, told] : kCases) {
    EXPECT_TRUE(isCardMounted()) << told;
    const UniqueFd file(inUse ? open((mountPoint_ / "IMG_0001.CR3").c_str(), O_RDONLY | O_CLOEXEC)
                              : -1);
    EXPECT_EQ(file.valid(), inUse);
    EXPECT_EQ(offload({"--eject"}, reaction), 0) << told;
    EXPECT_NE(told_.find(told), std::string::npos) << told_;
  }
  EXPECT_FALSE(isCardMounted());
}

TEST_F(DiskStack, TheHelperServesWhereThereIsNoDiskService) {
  if (access("/usr/bin/pkexec", X_OK) != 0) GTEST_SKIP() << "Needs the package pkexec.";
  PlatformKit::HelperOpener helper({"pkexec", helper_});
  EXPECT_EQ(openAsUser(helper, "allow"), Kind::opened);
  EXPECT_TRUE(asked_.starts_with("com.zephrimark.offload.open-device: ")) << asked_;
  EXPECT_EQ(openAsUser(helper, "dismiss"), Kind::declined);
}

TEST_F(DiskStack, UnmountsACardEverywhereUnlessItIsInUse) {
  if (access(kUdevd, X_OK) != 0) GTEST_SKIP() << "Needs the package udev.";
  startDeviceManager();
  if (HasFatalFailure()) return;
  UDisks disks;
  EXPECT_TRUE(disks.unmountDisk(card_->name()));
  for (const char* place : {"a", "b"}) {
    std::filesystem::create_directory(folder_.path() / place);
    mountAt(folder_.path() / place, card_->path().c_str(), "ext4", MS_RDONLY);
  }
  {
    const UniqueFd inUse(open((folder_.path() / "a/lost+found").c_str(), O_RDONLY | O_CLOEXEC));
    ASSERT_TRUE(inUse.valid());
    EXPECT_FALSE(disks.unmountDisk(card_->name()));
  }
  EXPECT_TRUE(disks.unmountDisk(card_->name()));
  EXPECT_FALSE(isCardMounted());
}

}  // namespace
}  // namespace DiskServices::Testing
