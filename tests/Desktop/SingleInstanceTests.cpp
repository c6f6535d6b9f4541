#include "PlatformKit/Linux/LinuxFileSystem.h"
#include "PlatformKit/Testing/TempFolder.h"
#include "ZephrimarkOffload/Desktop/SingleInstance.h"
#include "tests/Desktop/Process.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <vector>

#include <QFileInfo>
#include <QLocalSocket>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ZephrimarkOffload::Testing {
namespace {

using Role = SingleInstance::Role;

class SingleInstanceTest : public ::testing::Test {
 protected:
  std::unique_ptr<SingleInstance> newInstance() {
    auto instance = std::make_unique<SingleInstance>(fileSystem_, folder_);
    QObject::connect(instance.get(), &SingleInstance::activationRequested,
                     [this](const QString& token) { activations_.push_back(token); });
    return instance;
  }

  // Starts another process; see main.cpp for what it tells.
  void startAnother(Process& process, const QString& variable, const QString& token) const {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove("XDG_ACTIVATION_TOKEN");
    environment.remove("DESKTOP_STARTUP_ID");
    environment.insert("XDG_RUNTIME_DIR", QString::fromStdString(runtime_.path().native()));
    environment.insert(variable, token);
    process.setProcessEnvironment(environment);
    process.run(QCoreApplication::applicationFilePath(), {"--instance"});
  }

  PlatformKit::LinuxFileSystem fileSystem_;
  const PlatformKit::Testing::TempFolder runtime_;
  const PlatformKit::Path folder_ = runtime_.path() / "zephrimark-offload";
  const QString socket_ = QString::fromStdString((folder_ / "socket").native());
  std::vector<QString> activations_;
};

TEST_F(SingleInstanceTest, SecondStartActivatesTheFirstAlsoAfterACrash) {
  Process crashing;
  startAnother(crashing, "none", "");
  ASSERT_EQ(crashing.line(), "first");
  auto second = newInstance();
  EXPECT_EQ(second->claim("from here"), Role::second);
  EXPECT_TRUE(second->acknowledged());
  EXPECT_EQ(crashing.line(), "activated from here");
  crashing.kill();
  ASSERT_TRUE(crashing.waitForFinished());
  ASSERT_TRUE(QFileInfo::exists(socket_));

  auto first = newInstance();
  ASSERT_EQ(first->claim(""), Role::first);
  EXPECT_EQ(std::filesystem::status(folder_).permissions(), std::filesystem::perms::owner_all);
  EXPECT_FALSE(QFileInfo(socket_).permission(QFile::WriteGroup | QFile::WriteOther));
  struct Case {
    QString variable, token, received;
  };
  const Case cases[] = {{"XDG_ACTIVATION_TOKEN", "wayland-1", "wayland-1"},
                        {"DESKTOP_STARTUP_ID", "host_TIME1", "host_TIME1"},
                        {"XDG_ACTIVATION_TOKEN", "two\nlines", ""},
                        {"XDG_ACTIVATION_TOKEN", QString(5000, 'x'), ""}};
  for (const Case& given : cases) {
    Process other;
    startAnother(other, given.variable, given.token);
    EXPECT_EQ(other.line(), "acknowledged");
    ASSERT_FALSE(activations_.empty());
    EXPECT_EQ(activations_.back(), given.received);
  }
  EXPECT_EQ(activations_.size(), std::size(cases));

  first.reset();
  EXPECT_FALSE(QFileInfo::exists(socket_));
  EXPECT_EQ(newInstance()->claim(""), Role::first);
}

TEST_F(SingleInstanceTest, HostileConnectionsDoNoHarm) {
  auto first = newInstance();
  ASSERT_EQ(first->claim(""), Role::first);
  std::vector<std::unique_ptr<QLocalSocket>> sockets;
  const auto send = [&](const QByteArray& bytes) {
    sockets.push_back(std::make_unique<QLocalSocket>());
    sockets.back()->connectToServer(socket_);
    sockets.back()->write(bytes);
  };
  send("GET / HTTP/1.1\r\n\r\n");
  send(QByteArray("\0\xff\n", 3));
  send("activate \x1b[2J\n");
  send(QByteArray(1 << 20, 'x'));
  send(QByteArray("activate ") + QByteArray(1 << 20, 'x'));
  const auto nonsense = static_cast<std::ptrdiff_t>(sockets.size());
  for (int silent = 0; silent < 40; ++silent) send("");
  const auto dropped = [](const auto& socket) {
    return socket->state() == QLocalSocket::UnconnectedState;
  };
  const auto firstSilent = sockets.begin() + nonsense;
  EXPECT_TRUE(until([&] {
    return std::all_of(sockets.begin(), firstSilent, dropped) && dropped(sockets.back());
  }));
  EXPECT_FALSE(dropped(*firstSilent)) << "Nonsense and too many at once go first.";
  EXPECT_TRUE(until([&] { return std::all_of(sockets.begin(), sockets.end(), dropped); }));
  EXPECT_TRUE(activations_.empty());

  Process other;
  startAnother(other, "XDG_ACTIVATION_TOKEN", "good");
  EXPECT_EQ(other.line(), "acknowledged");
  EXPECT_EQ(activations_, std::vector<QString>{"good"});
}

TEST_F(SingleInstanceTest, OtherUsersCannotReachIt) {
  if (geteuid() != 0) GTEST_SKIP() << "Only the administrator can become another user.";
  namespace fs = std::filesystem;
  fs::permissions(runtime_.path(), fs::perms(0755));
  fs::create_directory(folder_);
  fs::permissions(folder_, fs::perms::all);
  const auto first = newInstance();
  ASSERT_EQ(first->claim(""), Role::first);
  // Whether a user reaches the socket: 0 or the error number.
  const auto reaches = [&](unsigned user) {
    const pid_t child = fork();
    if (child == 0) {
      sockaddr_un address{};
      address.sun_family = AF_UNIX;
      (folder_ / "socket").native().copy(address.sun_path, sizeof address.sun_path - 1);
      const int number = ::socket(AF_UNIX, SOCK_STREAM, 0);
      if (setgroups(0, nullptr) != 0 || setgid(user) != 0 || setuid(user) != 0) _exit(99);
      const bool reached =
          ::connect(number, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
      _exit(reached ? 0 : errno);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WEXITSTATUS(status);
  };
  EXPECT_EQ(reaches(65534), EACCES);
  EXPECT_EQ(reaches(0), 0);
}

TEST_F(SingleInstanceTest, EndsBesideAMuteFirstAndRunsWhereNothingCanBeLocked) {
  std::filesystem::create_directory(folder_);
  const auto lock = fileSystem_.lockFolder(folder_);
  ASSERT_TRUE(lock.ok());
  auto second = newInstance();
  EXPECT_EQ(second->claim(""), Role::second);
  EXPECT_FALSE(second->acknowledged());

  const PlatformKit::Path file = runtime_.path() / "file";
  PlatformKit::Testing::writeFile(file, "");
  SingleInstance one(fileSystem_, file / "folder");
  SingleInstance two(fileSystem_, file / "folder");
  EXPECT_EQ(one.claim(""), Role::first);
  EXPECT_EQ(two.claim(""), Role::first);
}

}  // namespace
}  // namespace ZephrimarkOffload::Testing
