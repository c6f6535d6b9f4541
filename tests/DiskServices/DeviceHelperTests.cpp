#include "PlatformKit/Posix/DescriptorPassing.h"
#include "PlatformKit/Posix/HelperOpener.h"
#include "tests/DiskServices/Machine.h"

#include <array>
#include <functional>
#include <memory>

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace DiskServices::Testing {
namespace {

using PlatformKit::Path;
using PlatformKit::UniqueFd;
using PlatformKit::Testing::pattern;
using PlatformKit::Testing::readFile;
using PlatformKit::Testing::TempFolder;
using PlatformKit::Testing::writeFile;

class DeviceHelper : public ::testing::Test {
 protected:
  DeviceHelper() {
    if (geteuid() != 0) return;
    writeFile(folder_.path() / "image", pattern(8192));
    device_ = std::make_unique<LoopDevice>(folder_.path() / "image");
  }
  void SetUp() override {
    if (geteuid() != 0) GTEST_SKIP() << "Only the administrator can make block devices.";
  }

  // Runs the helper with this output; answers its status. `prepare` is called in its process
  // before.
  int run(
      const std::vector<std::string>& arguments, int output,
      const std::function<void()>& prepare = [] {}) {
    std::vector<std::string> command = {helper_};
    command.insert(command.end(), arguments.begin(), arguments.end());
    std::vector<char*> list;
    list.reserve(command.size() + 1);
    for (std::string& argument : command) list.push_back(argument.data());
    list.push_back(nullptr);
    const UniqueFd errors(open(errors_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    const pid_t child = fork();
    if (child == 0) {
      dup2(output, STDOUT_FILENO);
      dup2(errors.get(), STDERR_FILENO);
      prepare();
      execv(list.front(), list.data());
      _exit(99);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  void expectRefusal(const std::vector<std::string>& arguments) {
    std::array<int, 2> ends{};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
    const UniqueFd ours(ends[0]);
    {
      const UniqueFd theirs(ends[1]);
      EXPECT_EQ(run(arguments, theirs.get()), 1) << ::testing::PrintToString(arguments);
    }
    EXPECT_FALSE(PlatformKit::receiveDescriptor(ours.get()).valid())
        << ::testing::PrintToString(arguments);
    EXPECT_TRUE(readFile(errors_).ends_with(".\n")) << readFile(errors_);
  }

  const TempFolder folder_;
  const Path errors_ = folder_.path() / "errors";
  Path helper_ = ZEPHRIMARK_DEVICE_HELPER;
  std::unique_ptr<LoopDevice> device_;
};

TEST_F(DeviceHelper, HandsOverTheDeviceForReadingOnly) {
  const auto before = openDescriptors();
  {
    const auto answer =
        PlatformKit::HelperOpener({ZEPHRIMARK_DEVICE_HELPER}).openReadOnly(device_->path());
    ASSERT_EQ(answer.kind, Kind::opened);
    std::string bytes(8192, '\0');
    EXPECT_EQ(pread(answer.descriptor.get(), bytes.data(), bytes.size(), 0), 8192);
    EXPECT_EQ(bytes, pattern(8192));
    EXPECT_LT(write(answer.descriptor.get(), "x", 1), 0);
    EXPECT_NE(fcntl(answer.descriptor.get(), F_GETFD) & FD_CLOEXEC, 0);
  }
  EXPECT_EQ(openDescriptors(), before);
}

TEST_F(DeviceHelper, RefusesWhatIsNotABlockDeviceRightInDev) {
  const Path link = "/dev/zephrimark-test-" + std::to_string(getpid());
  std::filesystem::create_symlink(device_->path(), link);
  expectRefusal({link});
  std::filesystem::remove(link);
  writeFile(link, "a regular file");
  expectRefusal({link});
  std::filesystem::remove(link);
  ASSERT_EQ(mkfifo(link.c_str(), 0600), 0);
  expectRefusal({link});
  std::filesystem::remove(link);
  expectRefusal({link});  // nothing there
  const Path node = folder_.path() / "node";
  struct stat status {};
  ASSERT_EQ(stat(device_->path().c_str(), &status), 0);
  ASSERT_EQ(mknod(node.c_str(), S_IFBLK | 0600, status.st_rdev), 0);
  const std::string name = device_->name();
  for (const std::string& path : {node.native(),
                                  std::string("/dev/null"),
                                  std::string("/dev/../etc/passwd"),
                                  "/dev/../dev/" + name,
                                  "/dev//" + name,
                                  "/dev/./" + name,
                                  "//dev/" + name,
                                  name,
                                  "dev/" + name,
                                  std::string("/dev/"),
                                  std::string("/dev"),
                                  std::string("/dev/.."),
                                  std::string("/etc/passwd"),
                                  std::string(),
                                  std::string("/dev/stdin"),
                                  std::string("/dev/stdout"),
                                  std::string("/dev/fd"),
                                  std::string("/dev/fd/1"),
                                  std::string("/proc/self/fd/1"),
                                  std::string("/dev/shm"),
                                  std::string("/dev/zero"),
                                  std::string("/dev/tty"),
                                  "/dev/" + name + "\n",
                                  "/dev/" + name + "/",
                                  " /dev/" + name,
                                  "/dev/" + std::string(255, 'n'),
                                  "/dev/" + std::string(100'000, 'n')}) {
    expectRefusal({path});
  }
}

TEST_F(DeviceHelper, RefusesOtherArgumentsAndOtherOutputs) {
  expectRefusal({});
  expectRefusal({device_->path(), device_->path()});
  expectRefusal({"--", device_->path()});
  const Path output = folder_.path() / "output";
  const UniqueFd file(open(output.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  EXPECT_EQ(run({device_->path()}, file.get()), 1);
  EXPECT_EQ(readFile(output), "");
  EXPECT_NE(readFile(errors_), "");
}

// pkexec cleans the environment, but whoever starts the helper chooses its streams.
TEST_F(DeviceHelper, ServesWithStreamsClosedAndNeverWithoutItsSocket) {
  for (const bool socketClosed : {false, true}) {
    std::array<int, 2> ends{};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
    const UniqueFd ours(ends[0]);
    {
      const UniqueFd theirs(ends[1]);
      const auto closeStreams = [socketClosed] {
        for (const int stream : {STDIN_FILENO, STDERR_FILENO}) close(stream);
        if (socketClosed) close(STDOUT_FILENO);
      };
      EXPECT_EQ(run({device_->path()}, theirs.get(), closeStreams), socketClosed ? 1 : 0);
    }
    const UniqueFd received = PlatformKit::receiveDescriptor(ours.get());
    EXPECT_EQ(PlatformKit::isReadOnlyDevice(received.get(), device_->path()), !socketClosed);
  }
  std::string bytes(8192, '\0');
  const UniqueFd device(open(device_->path().c_str(), O_RDONLY | O_CLOEXEC));
  EXPECT_EQ(pread(device.get(), bytes.data(), bytes.size(), 0), 8192);
  EXPECT_EQ(bytes, pattern(8192)) << "a sentence went to the device, which had the stream's number";
}

TEST_F(DeviceHelper, GivesAnOrdinaryUserNothingByItself) {
  helper_ = PlatformKit::Testing::programForEverybody(helper_, folder_);
  ASSERT_EQ(std::filesystem::status(ZEPHRIMARK_DEVICE_HELPER).permissions() &
                (std::filesystem::perms::set_uid | std::filesystem::perms::set_gid),
            std::filesystem::perms::none);
  std::array<int, 2> ends{};
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
  const UniqueFd ours(ends[0]);
  {
    const UniqueFd theirs(ends[1]);
    constexpr unsigned kNobody = 65534;
    const auto becomeNobody = [] {
      if (setgroups(0, nullptr) != 0 || setgid(kNobody) != 0 || setuid(kNobody) != 0) _exit(98);
    };
    EXPECT_EQ(run({device_->path()}, theirs.get(), becomeNobody), 1);
  }
  EXPECT_FALSE(PlatformKit::receiveDescriptor(ours.get()).valid());
  EXPECT_TRUE(readFile(errors_).ends_with("Permission denied.\n")) << readFile(errors_);
}

// What it could do beyond its purpose, it would have to call: the names are in the table of
// symbols.
TEST(DeviceHelperProgram, CannotStartProgramsAndReadsNoEnvironment) {
  const std::string program = readFile(ZEPHRIMARK_DEVICE_HELPER);
  const auto calls = [&](const std::string& function) {
    return program.find('\0' + function + "@GLIBC") != std::string::npos;
  };
  EXPECT_TRUE(calls("sendmsg") && calls("lstat")) << "the names are looked for in the wrong way";
  for (const char* function :
       {"system",      "popen",        "execve", "execv", "execvp", "execl",  "execlp",
        "posix_spawn", "posix_spawnp", "fork",   "vfork", "dlopen", "getenv", "secure_getenv",
        "setlocale",   "fopen",        "openat", "creat", "ioctl",  "write",  "unlink",
        "rename",      "chmod",        "chown",  "setuid"}) {
    EXPECT_FALSE(calls(function)) << function;
  }
}

TEST(DeviceHelperAction, AsksForTheAdministratorEachTime) {
  const std::string action = readFile(ZEPHRIMARK_POLICY);
  const auto count = [&](const std::string& text) {
    std::size_t found = 0;
    for (auto at = action.find(text); at != std::string::npos; at = action.find(text, at + 1)) {
      ++found;
    }
    return found;
  };
  EXPECT_EQ(count("<action "), 1U);
  for (const char* who : {"allow_any", "allow_inactive", "allow_active"}) {
    EXPECT_EQ(count(std::string("<") + who + ">auth_admin</" + who + ">"), 1U) << who;
    EXPECT_EQ(count(who), 2U) << who;
  }
  // No windows for the helper, no other action along with it, and no other program.
  EXPECT_EQ(count("<annotate "), 1U);
  EXPECT_EQ(count("<annotate key=\"org.freedesktop.policykit.exec.path\">"
                  "@ZEPHRIMARK_DEVICE_HELPER@</annotate>"),
            1U);
}

}  // namespace
}  // namespace DiskServices::Testing
