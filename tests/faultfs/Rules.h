#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace FaultFs {

/// What shall happen to one call.
struct Effect {
  int error = 0;  ///< not 0: this error number instead of the call
  std::size_t most = std::numeric_limits<std::size_t>::max();  ///< bytes that may be written
  bool flip = false;                                           ///< one bit of what is read is wrong
};

/// Decides about every call of the file system. All functions: any thread.
///
/// A rule is a line "CALL [KEY=VALUE]...". CALL is open, openDirect, create, read, readDirect,
/// write, flush, rename, noReplace, unlink, or any; the Direct ones are those past the cache. Which
/// calls:
///   at=TEXT       of paths that end with it
///   from=N to=N   reads and writes that touch bytes between the two
///   nth=N         from the n-th one on
///   times=N       no more than so many
/// What happens: error=NUMBER, short=BYTES, flip=1, delay=MICROSECONDS, or hold=1, which lets the
/// call wait until there are other rules. Only writes can be short: to the kernel, a short read is
/// a file's end.
class Rules {
 public:
  /// Replaces all rules; false, and no change, when one of them means nothing.
  bool replace(const std::string& lines);
  /// For each rule the number of calls it has concerned, one a line.
  [[nodiscard]] std::string counts() const;
  /// Counts the call and answers what shall happen, after all delays.
  Effect onCall(std::string_view call, std::string_view path, std::int64_t offset = 0,
                std::size_t size = 0);

 private:
  static constexpr std::int64_t kEnd = std::numeric_limits<std::int64_t>::max();

  struct Rule {
    std::string call;
    std::string at;
    std::int64_t from = 0;
    std::int64_t to = kEnd;
    std::int64_t nth = 1;
    std::int64_t times = kEnd;
    std::int64_t delay = 0;
    bool hold = false;
    Effect effect;
    std::int64_t seen = 0;
    std::int64_t done = 0;
  };

  static bool parse(const std::string& line, Rule& rule);
  static bool set(Rule& rule, const std::string& key, const std::string& value);

  mutable std::mutex mutex_;
  std::condition_variable replaced_;
  std::vector<Rule> rules_;
  std::uint64_t generation_ = 0;
};

}  // namespace FaultFs
