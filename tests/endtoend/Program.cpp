#include "tests/endtoend/Program.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace EndToEnd {
namespace {

using PlatformKit::UniqueFd;
using namespace std::chrono_literals;

void check(bool worked, const char* what) {
  if (!worked) throw std::system_error(errno, std::generic_category(), what);
}

// Answers the end to write to.
UniqueFd makePipe(UniqueFd& read) {
  std::array<int, 2> ends{};
  check(pipe2(ends.data(), O_CLOEXEC) == 0, "pipe2");
  read = UniqueFd(ends[0]);
  UniqueFd write(ends[1]);
  // As small as it gets, so that a program to which nobody listens soon waits for its listener.
  check(fcntl(ends[0], F_SETPIPE_SZ, 1) > 0, "F_SETPIPE_SZ");
  return write;
}

// Answers the path under which the program opens it.
std::string makeTerminal(unsigned short columns, UniqueFd& ours) {
  ours = UniqueFd(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
  std::array<char, 128> path{};
  const winsize size{24, columns, 0, 0};
  check(ours.valid() && grantpt(ours.get()) == 0 && unlockpt(ours.get()) == 0 &&
            ptsname_r(ours.get(), path.data(), path.size()) == 0 &&
            ioctl(ours.get(), TIOCSWINSZ, &size) == 0,
        "pseudo-terminal");
  return path.data();
}

std::vector<char*> pointers(const std::vector<std::string>& strings) {
  std::vector<char*> list;
  // posix_spawn changes none of them; its type is older than const.
  for (const std::string& text : strings) list.push_back(const_cast<char*>(text.c_str()));
  list.push_back(nullptr);
  return list;
}

// What the child does before it becomes the program.
struct Preparation {
  Preparation() {
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    // A session of its own, so that the terminal it opens is the one whose Ctrl-C it gets.
    posix_spawnattr_setflags(&attributes,
                             POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSID);
  }
  ~Preparation() {
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
  }
  Preparation(const Preparation&) = delete;
  Preparation& operator=(const Preparation&) = delete;

  posix_spawn_file_actions_t actions{};
  posix_spawnattr_t attributes{};
};

}  // namespace

Program::Program(const std::vector<std::string>& command, const Setting& setting)
    : deadline_(std::chrono::steady_clock::now() + 60s) {
  Preparation child;
  UniqueFd output;
  UniqueFd error;
  std::string input = "/dev/null";
  if (setting.columns > 0) {
    input = makeTerminal(setting.columns, output_.fd);
  } else {
    output = makePipe(output_.fd);
    error = makePipe(error_.fd);
  }
  posix_spawn_file_actions_addopen(&child.actions, STDIN_FILENO, input.c_str(), O_RDWR, 0);
  posix_spawn_file_actions_adddup2(&child.actions, output.valid() ? output.get() : STDIN_FILENO,
                                   STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&child.actions, error.valid() ? error.get() : STDIN_FILENO,
                                   STDERR_FILENO);
  posix_spawn_file_actions_addclosefrom_np(&child.actions, STDERR_FILENO + 1);
  posix_spawn_file_actions_addchdir_np(&child.actions, setting.folder.c_str());
  errno = posix_spawnp(&process_, command.front().c_str(), &child.actions, &child.attributes,
                       pointers(command).data(), pointers(setting.environment).data());
  check(errno == 0, command.front().c_str());
}

Program::~Program() {
  if (!isRunning()) return;
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
}

void Program::send(int signal) const {
  check(kill(process_, signal) == 0, "kill");
}

void Program::type(std::string_view keys) const {
  check(write(output_.fd.get(), keys.data(), keys.size()) > 0, "typing");
}

void Program::stopListening() {
  output_.fd = UniqueFd();
  error_.fd = UniqueFd();
}

bool Program::isRunning() {
  int status = 0;
  if (running_ && waitpid(process_, &status, WNOHANG) == process_) {
    running_ = false;
    status_ = WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
  }
  return running_;
}

void Program::readUntil(const std::function<bool(const std::string& output)>& seen) {
  while (!seen(output_.text)) {
    if (!readSome()) throw std::runtime_error("ended too early: " + output_.text + error_.text);
  }
}

End Program::waitForEnd() {
  while (readSome()) continue;
  while (isRunning()) {
    giveUpWhenLate();
    std::this_thread::sleep_for(2ms);
  }
  return {status_, output_.text, error_.text};
}

// False when nothing can come any more.
bool Program::readSome() {
  if (!output_.fd.valid() && !error_.fd.valid()) return false;
  giveUpWhenLate();
  std::array<pollfd, 2> waiting = {{{output_.fd.get(), POLLIN, 0}, {error_.fd.get(), POLLIN, 0}}};
  poll(waiting.data(), waiting.size(), 100);
  for (Stream* stream : {&output_, &error_}) {
    if (waiting[stream == &output_ ? 0 : 1].revents == 0) continue;
    std::array<char, 1024> bytes{};
    const ssize_t count = read(stream->fd.get(), bytes.data(), bytes.size());
    if (count > 0) {
      stream->text.append(bytes.data(), static_cast<std::size_t>(count));
    } else {
      stream->fd = UniqueFd();
    }
  }
  return true;
}

void Program::giveUpWhenLate() {
  if (std::chrono::steady_clock::now() < deadline_) return;
  if (isRunning()) kill(process_, SIGKILL);
  throw std::runtime_error("still running after 60 seconds: " + output_.text + error_.text);
}

}  // namespace EndToEnd
