#include "PlatformKit/Posix/DescriptorPassing.h"
#include "PlatformKit/Posix/HelperOpener.h"
#include "tests/DiskServices/Machine.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace DiskServices::Testing {
namespace {

using PlatformKit::HelperOpener;
using PlatformKit::Path;
using PlatformKit::receiveDescriptor;
using PlatformKit::sendDescriptor;
using PlatformKit::UniqueFd;
using PlatformKit::Testing::pattern;
using PlatformKit::Testing::TempFolder;
using PlatformKit::Testing::writeFile;

/// Two connected sockets.
struct Sockets {
  Sockets() {
    std::array<int, 2> ends{};
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
    ours = UniqueFd(ends[0]);
    theirs = UniqueFd(ends[1]);
  }
  UniqueFd ours;
  UniqueFd theirs;
};

// One message with `count` descriptors of /dev/null.
void sendMany(int socket, std::size_t count) {
  const UniqueFd null(open("/dev/null", O_RDONLY | O_CLOEXEC));
  char byte = 0;
  iovec data{&byte, 1};
  std::vector<unsigned char> control(CMSG_SPACE(count * sizeof(int)));
  msghdr header{};
  header.msg_iov = &data;
  header.msg_iovlen = 1;
  header.msg_control = control.data();
  header.msg_controllen = control.size();
  cmsghdr* message = CMSG_FIRSTHDR(&header);
  message->cmsg_level = SOL_SOCKET;
  message->cmsg_type = SCM_RIGHTS;
  message->cmsg_len = CMSG_LEN(count * sizeof(int));
  const std::vector<int> numbers(count, null.get());
  std::memcpy(CMSG_DATA(message), numbers.data(), count * sizeof(int));
  ASSERT_EQ(sendmsg(socket, &header, 0), 1);
}

TEST(DescriptorPassing, DeliversTheSameOpenFileCloseOnExec) {
  const TempFolder folder;
  writeFile(folder.path() / "file", "content");
  Sockets sockets;
  UniqueFd received;
  {
    const UniqueFd file(open((folder.path() / "file").c_str(), O_RDONLY | O_CLOEXEC));
    ASSERT_EQ(sendDescriptor(sockets.theirs.get(), file.get()), 0);
    received = receiveDescriptor(sockets.ours.get());
    ASSERT_TRUE(received.valid());
    EXPECT_NE(received.get(), file.get());
    lseek(file.get(), 3, SEEK_SET);
  }
  EXPECT_EQ(lseek(received.get(), 0, SEEK_CUR), 3) << "the sender's place is the receiver's";
  EXPECT_NE(fcntl(received.get(), F_GETFD) & FD_CLOEXEC, 0);
}

TEST(DescriptorPassing, LeaksNothingWhateverComes) {
  Sockets sockets;
  const auto before = openDescriptors();
  sendMany(sockets.theirs.get(), 2);
  EXPECT_TRUE(receiveDescriptor(sockets.ours.get()).valid());
  EXPECT_EQ(openDescriptors(), before);
  sendMany(sockets.theirs.get(), 200);  // more than there is room for
  EXPECT_FALSE(receiveDescriptor(sockets.ours.get()).valid());
  EXPECT_EQ(openDescriptors(), before);
  ASSERT_EQ(write(sockets.theirs.get(), "x", 1), 1);
  EXPECT_FALSE(receiveDescriptor(sockets.ours.get()).valid());
  EXPECT_EQ(sendDescriptor(sockets.theirs.get(), -1), EBADF);
  sockets.theirs = UniqueFd();
  EXPECT_FALSE(receiveDescriptor(sockets.ours.get()).valid());
  EXPECT_EQ(sendDescriptor(sockets.ours.get(), sockets.ours.get()), EPIPE);
  EXPECT_FALSE(receiveDescriptor(-1).valid());
}

/// HelperOpener with shell commands as its helper; the device's path is their $1.
class FakeHelper : public ::testing::Test {
 protected:
  Kind kindOf(const std::string& script, const Path& device = "/dev/null") {
    return HelperOpener({"sh", "-c", script, "sh"}).openReadOnly(device).kind;
  }

  void TearDown() override { EXPECT_EQ(openDescriptors(), before_); }

  const TempFolder folder_;
  const std::set<int> before_ = openDescriptors();
};

TEST(HelperProgram, IsWhereAnInstallationHasItOrBesideTheProgram) {
  const TempFolder prefix;
  const Path programs = prefix.path() / "bin";
  const Path installed = "../libexec/zephrimark-open-device";
  EXPECT_EQ(PlatformKit::helperProgram(programs, installed), programs / "zephrimark-open-device");
  const Path helper = prefix.path() / "libexec/zephrimark-open-device";
  writeFile(helper, "");
  EXPECT_EQ(PlatformKit::helperProgram(programs, installed), helper);
  EXPECT_EQ(PlatformKit::programFolder(),
            std::filesystem::canonical("/proc/self/exe").parent_path());
}

TEST_F(FakeHelper, TellsARefusalFromAHelperThatDoesNotWork) {
  EXPECT_EQ(kindOf("exit 126"), Kind::declined);
  EXPECT_EQ(kindOf("exit 127"), Kind::declined);
  EXPECT_EQ(kindOf("kill -INT $$"), Kind::declined);
  for (const char* broken : {"exit 0", "exit 1", "kill -KILL $$", "printf garbage; exit 0",
                             "while printf garbage; do :; done", "exec >&-; exit 1"}) {
    EXPECT_EQ(kindOf(broken), Kind::unavailable) << broken;
  }
  const Path missing = folder_.path() / "missing";
  EXPECT_EQ(HelperOpener({missing}).openReadOnly("/dev/null").kind, Kind::unavailable);
  EXPECT_EQ(HelperOpener({"zephrimark-no-such-program"}).openReadOnly("/dev/null").kind,
            Kind::unavailable);
  // As pkexec would answer a missing helper with the status of a refusal.
  EXPECT_EQ(HelperOpener({"sh", "-c", "exit 127", missing}).openReadOnly("/dev/null").kind,
            Kind::unavailable);
}

TEST_F(FakeHelper, GetsThePathAndItsThreeStreamsAndNothingElse) {
  // Unblocked in the helper, or Ctrl-C could not end it while it asks for a password.
  sigset_t interrupt;
  sigset_t before;
  sigemptyset(&interrupt);
  sigaddset(&interrupt, SIGINT);
  pthread_sigmask(SIG_BLOCK, &interrupt, &before);
  const UniqueFd inheritable(open("/dev/null", O_RDONLY));
  const Path log = folder_.path() / "log";
  EXPECT_EQ(kindOf("exec >" + log.native() + "; ls /proc/$$/fd; echo \"$1\"; cat; kill -INT $$",
                   "/dev/a name"),
            Kind::declined);
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  EXPECT_EQ(PlatformKit::Testing::readFile(log), "0\n1\n2\n/dev/a name\n");
}

TEST_F(FakeHelper, OnlyAReadOnlyDescriptorOfTheDeviceItselfIsTaken) {
  if (geteuid() != 0) GTEST_SKIP() << "Only the administrator can make block devices.";
  if (access("/usr/bin/python3", X_OK) != 0) GTEST_SKIP() << "Needs the package python3.";
  writeFile(folder_.path() / "image", pattern(4096));
  writeFile(folder_.path() / "other", pattern(4096));
  const LoopDevice device(folder_.path() / "image");
  const LoopDevice other(folder_.path() / "other");
  const auto kindOfSending = [&](const std::string& paths, const std::string& flags) {
    const std::string script =
        "import os, socket, sys\n"
        "device, other, null = sys.argv[1], '" +
        other.path().native() +
        "', '/dev/null'\n"
        "numbers = [os.open(path, " +
        flags + ") for path in [" + paths +
        "]]\n"
        "socket.send_fds(socket.socket(fileno=1), [b'x'], numbers)\n";
    return HelperOpener({"/usr/bin/python3", "-c", script}).openReadOnly(device.path()).kind;
  };
  EXPECT_EQ(kindOfSending("device", "os.O_RDONLY"), Kind::opened);
  EXPECT_EQ(kindOfSending("device, device", "os.O_RDONLY"), Kind::opened);
  EXPECT_EQ(kindOfSending("device", "os.O_RDWR"), Kind::unavailable);
  EXPECT_EQ(kindOfSending("device", "os.O_PATH"), Kind::unavailable);
  EXPECT_EQ(kindOfSending("other", "os.O_RDONLY"), Kind::unavailable);
  EXPECT_EQ(kindOfSending("null", "os.O_RDONLY"), Kind::unavailable);
}

}  // namespace
}  // namespace DiskServices::Testing
