#include "tests/DiskServices/Machine.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <linux/loop.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace DiskServices::Testing {
namespace {

using PlatformKit::Path;
using PlatformKit::UniqueFd;
using namespace std::chrono_literals;

void check(bool worked, const char* what) {
  if (!worked) throw std::system_error(errno, std::generic_category(), what);
}

std::vector<std::string> busCommand(const Path& folder, const Path& socket) {
  const Path config = folder / "bus.conf";
  PlatformKit::Testing::writeFile(
      config,
      "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\"\n"
      " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
      "<busconfig><auth>EXTERNAL</auth><listen>unix:path=" +
          socket.native() +
          "</listen>"
          "<policy context=\"default\"><allow user=\"*\"/><allow own=\"*\"/>"
          "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/></policy></busconfig>\n");
  return {"dbus-daemon", "--config-file=" + config.native(),
          "--nofork",    "--nopidfile",
          "--nosyslog",  "--print-address=1"};
}

}  // namespace

std::set<int> openDescriptors() {
  std::set<int> numbers;
  for (int number = 0; number < 1024; ++number) {
    if (fcntl(number, F_GETFD) >= 0) numbers.insert(number);
  }
  return numbers;
}

LoopDevice::LoopDevice(const Path& image) {
  const UniqueFd file(open(image.c_str(), O_RDWR | O_CLOEXEC));
  const UniqueFd control(open("/dev/loop-control", O_RDWR | O_CLOEXEC));
  check(file.valid() && control.valid(), "loop-control");
  loop_config config{};
  config.fd = static_cast<__u32>(file.get());
  config.info.lo_flags = LO_FLAGS_AUTOCLEAR;
  for (;;) {
    const int number = ioctl(control.get(), LOOP_CTL_GET_FREE);
    check(number >= 0, "LOOP_CTL_GET_FREE");
    path_ = "/dev/loop" + std::to_string(number);
    fd_ = UniqueFd(open(path_.c_str(), O_RDWR | O_CLOEXEC));
    check(fd_.valid(), path_.c_str());
    if (ioctl(fd_.get(), LOOP_CONFIGURE, &config) == 0) return;
    check(errno == EBUSY, "LOOP_CONFIGURE");  // somebody else was faster
  }
}

Daemon::Daemon(std::vector<std::string> command) {
  std::array<int, 2> ends{};
  check(pipe2(ends.data(), O_CLOEXEC) == 0, "pipe2");
  output_ = UniqueFd(ends[0]);
  const UniqueFd theirs(ends[1]);
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (std::string& argument : command) arguments.push_back(argument.data());
  arguments.push_back(nullptr);
  const pid_t parent = getpid();
  process_ = fork();
  check(process_ >= 0, "fork");
  if (process_ > 0) return;
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() == parent && dup2(theirs.get(), STDOUT_FILENO) >= 0) {
    execvp(arguments.front(), arguments.data());
  }
  _exit(127);
}

Daemon::~Daemon() {
  end();
}

void Daemon::end() {
  if (process_ < 0) return;
  const pid_t process = std::exchange(process_, -1);
  // Asked first, so that one with processes of its own can end those.
  kill(process, SIGTERM);
  for (int tries = 0; tries < 500; ++tries) {
    if (waitpid(process, nullptr, WNOHANG) != 0) return;
    std::this_thread::sleep_for(10ms);
  }
  kill(process, SIGKILL);
  waitpid(process, nullptr, 0);
}

std::string Daemon::readLine() {
  std::string line;
  char character = 0;
  while (read(output_.get(), &character, 1) == 1 && character != '\n') line += character;
  return line;
}

// NOLINTBEGIN(concurrency-mt-unsafe): these tests have one thread
PrivateBus::PrivateBus(const Path& socket) : daemon_(busCommand(folder_.path(), socket)) {
  const std::string address = daemon_.readLine();
  if (address.empty()) throw std::runtime_error("dbus-daemon did not start");
  setenv("DBUS_SYSTEM_BUS_ADDRESS", address.c_str(), 1);
}

PrivateBus::~PrivateBus() {
  unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
}
// NOLINTEND(concurrency-mt-unsafe)

}  // namespace DiskServices::Testing
