#pragma once

#include "PlatformKit/FileSystem.h"
#include "PlatformKit/Posix/UniqueFd.h"

#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace EndToEnd {

/// What is left of a program that has ended.
struct End {
  int status;  ///< its exit status; minus the number of the signal that killed it
  std::string output;
  std::string error;
};

/// A program in a process of its own, which has no descriptor of this one and dies with this
/// object. Its standard input is empty. After 60 seconds every call that waits kills it and throws
/// std::runtime_error. One thread.
class Program {
 public:
  struct Setting {
    PlatformKit::Path folder;              ///< the one it works in
    std::vector<std::string> environment;  ///< all of it, as NAME=value
    unsigned short columns = 0;            ///< not 0: all its streams are a terminal of this width
  };

  /// `command`: the program's path, or its name if it is on our PATH, and its arguments.
  Program(const std::vector<std::string>& command, const Setting& setting);
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  void send(int signal) const;
  /// Types on the program's terminal.
  void type(std::string_view keys) const;
  /// Closes our ends of its output and error.
  void stopListening();
  [[nodiscard]] bool isRunning();
  /// Reads, little by little, until `seen` answers true for the output so far. A program that has
  /// more to say than a pipe holds (a page of memory) waits from then on.
  void readUntil(const std::function<bool(const std::string& output)>& seen);
  /// Reads to the end. On a terminal, `output` is everything that was shown.
  End waitForEnd();

 private:
  struct Stream {
    PlatformKit::UniqueFd fd;
    std::string text;
  };

  bool readSome();
  void giveUpWhenLate();

  Stream output_;
  Stream error_;
  pid_t process_ = -1;
  bool running_ = true;
  int status_ = 0;
  std::chrono::steady_clock::time_point deadline_;
};

}  // namespace EndToEnd
