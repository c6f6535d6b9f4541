#include "tests/scale/Measured.h"

#include "PlatformKit/Testing/TempFolder.h"

#include <chrono>
#include <system_error>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Scale {

namespace {

double inSeconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

}  // namespace

using PlatformKit::Path;

Measured offload(const Path& card, const std::vector<Path>& destinations, const Path& folder) {
  std::vector<std::string> words = {ZEPHRIMARK_PROGRAM, "offload", card};
  words.insert(words.end(), destinations.begin(), destinations.end());
  for (const char* word : {"--json", "--quiet", "--template", "{card}"}) words.emplace_back(word);
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);

  const Path output = folder / "output";
  const Path error = folder / "error";
  posix_spawn_file_actions_t actions{};
  posix_spawn_file_actions_init(&actions);
  constexpr int kNew = O_WRONLY | O_CREAT | O_TRUNC;
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), kNew, 0600);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, error.c_str(), kNew, 0600);
  pid_t process = -1;
  const auto start = std::chrono::steady_clock::now();
  const int failed =
      posix_spawn(&process, words.front().c_str(), &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (failed != 0) throw std::system_error(failed, std::generic_category(), words.front());
  int status = 0;
  rusage usage{};
  if (wait4(process, &status, 0, &usage) != process) {
    throw std::system_error(errno, std::generic_category(), "wait4");
  }
  Measured measured;
  measured.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  measured.seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  measured.cpuSeconds = inSeconds(usage.ru_utime) + inSeconds(usage.ru_stime);
  measured.peakMiB = static_cast<double>(usage.ru_maxrss) / 1024;
  measured.output = PlatformKit::Testing::readFile(output);
  measured.error = PlatformKit::Testing::readFile(error);
  return measured;
}

}  // namespace Scale
