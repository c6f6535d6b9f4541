#include "PlatformKit/Posix/HelperOpener.h"

#include "PlatformKit/Posix/DescriptorPassing.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <exception>

#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace PlatformKit {
namespace {

using Kind = PrivilegedOpener::Answer::Kind;

constexpr int kDismissed = 126;
constexpr int kNotAuthorizedOrError = 127;

// What the child does before it becomes the program.
class Preparation {
 public:
  explicit Preparation(int output) {
    posix_spawn_file_actions_init(&actions_);
    posix_spawnattr_init(&attributes_);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes_, &signals);
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&attributes_, &signals);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    // Before the others are replaced: the socket may have the number of a stream that was closed.
    failed_ =
        posix_spawn_file_actions_adddup2(&actions_, output, STDOUT_FILENO) != 0 ||
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0) != 0 ||
        posix_spawn_file_actions_addopen(&actions_, STDERR_FILENO, "/dev/null", O_WRONLY, 0) != 0 ||
        posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1) != 0;
  }
  ~Preparation() {
    posix_spawn_file_actions_destroy(&actions_);
    posix_spawnattr_destroy(&attributes_);
  }
  Preparation(const Preparation&) = delete;
  Preparation& operator=(const Preparation&) = delete;

  // Answers the child's number, or -1.
  [[nodiscard]] pid_t start(std::vector<std::string> command) const {
    if (failed_) return -1;
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (std::string& argument : command) arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    pid_t child = -1;
    const int error =
        posix_spawnp(&child, arguments.front(), &actions_, &attributes_, arguments.data(), environ);
    return error == 0 ? child : -1;
  }

 private:
  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
  bool failed_ = false;
};

// pkexec answers "the program is missing" with the status it has for a refusal, so that is asked
// before. A name without a folder is left to the search along PATH.
bool isMissing(const std::string& program) {
  return program.starts_with('/') && access(program.c_str(), X_OK) != 0;
}

Kind waitForRefusal(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    // Somebody else's wait took the status: nothing is known of a refusal.
    if (errno != EINTR) return Kind::unavailable;
  }
  const bool refused = WIFEXITED(status) ? WEXITSTATUS(status) == kDismissed ||
                                               WEXITSTATUS(status) == kNotAuthorizedOrError
                                         : WTERMSIG(status) == SIGINT;
  return refused ? Kind::declined : Kind::unavailable;
}

PrivilegedOpener::Answer openWith(const std::vector<std::string>& command, const Path& device) {
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) return {};
  UniqueFd ours(ends[0]);
  UniqueFd theirs(ends[1]);
  const pid_t child = Preparation(theirs.get()).start(command);
  if (child < 0) return {};
  // With our copy of it open, the program's end would go unnoticed.
  { const UniqueFd closed = std::move(theirs); }
  UniqueFd descriptor = receiveDescriptor(ours.get());
  { const UniqueFd closed = std::move(ours); }
  const Kind refusal = waitForRefusal(child);
  if (isReadOnlyDevice(descriptor.get(), device)) return {Kind::opened, std::move(descriptor)};
  return {refusal, {}};
}

}  // namespace

Path programFolder() {
  std::error_code error;
  const Path program = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? Path("/") : program.parent_path();
}

Path helperProgram(const Path& folder, const Path& installed) {
  const Path place = (folder / installed).lexically_normal();
  std::error_code error;
  return std::filesystem::exists(place, error) ? place : folder / installed.filename();
}

PrivilegedOpener::Answer HelperOpener::openReadOnly(const Path& device) {
  try {
    if (std::any_of(command_.begin(), command_.end(), isMissing)) return {};
    std::vector<std::string> command = command_;
    command.push_back(device.native());
    return openWith(command, device);
  } catch (const std::exception&) {
    // No memory for the arguments; no child has been started.
    return {};
  }
}

}  // namespace PlatformKit
