// The least time in which a card's bytes can come onto drives with all that makes a copy certain:
// the card is read twice, every copy is written, flushed and read back, past the cache. Nothing is
// hashed or compared, there is one long file, and what is written was made before the clock starts.
// Nobody who does the same work can be faster, provided that the best way was looked for: how long
// requests are, how many are under way, whether one part is read back while the next is written.
// Prints the seconds.
//   LimitBenchmark [--request BYTES] [--depth REQUESTS] [--parts N]
//                  [--write extend|reserve|overwrite|cached] [--read direct|mapped] [--bytes N]
//                  CARD FOLDER...
// CARD is a file, of which the first N bytes are read. Each FOLDER is on a drive and gets a file
// "limit", which is removed afterwards. Any error ends the program with status 1 and a message.
#include "benchmarks/DirectFile.h"
#include "benchmarks/LimitPlan.h"
#include "benchmarks/Timing.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <functional>
#include <latch>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

/// Memory of large pages that is there before the clock starts, full of what no drive can compress.
class Buffer {
 public:
  Buffer(std::uint64_t size, std::uint64_t seed) : size_(size) {
    void* memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) std::abort();
    // Only faster: a direct request names every page to the drive.
    static_cast<void>(madvise(memory, size, MADV_HUGEPAGE));
    memory_ = static_cast<std::byte*>(memory);
    std::mt19937_64 random(seed);
    for (std::uint64_t at = 0; at < size; at += sizeof(std::uint64_t)) put(at, random());
  }
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;
  ~Buffer() { munmap(memory_, size_); }

  [[nodiscard]] std::byte* data() const { return memory_; }
  /// Makes each block differ from all others of the file.
  void mark(std::uint64_t size, std::uint64_t offset) {
    for (std::uint64_t at = 0; at < size; at += LimitPlan::kBlock) put(at, offset + at);
  }

 private:
  void put(std::uint64_t at, std::uint64_t word) { std::memcpy(memory_ + at, &word, sizeof word); }

  std::byte* memory_ = nullptr;
  std::uint64_t size_;
};

/// What of each part of a file is still to be done.
class Progress {
 public:
  explicit Progress(const std::vector<std::uint64_t>& steps) : left_(steps.begin(), steps.end()) {}

  void step(std::uint64_t part) {
    if (--left_[part] == 0) left_[part].notify_all();
  }
  void await(std::uint64_t part) const {
    for (std::uint64_t left = left_[part]; left > 0; left = left_[part]) left_[part].wait(left);
  }

 private:
  std::deque<std::atomic<std::uint64_t>> left_;
};

/// Threads that begin together.
class Race {
 public:
  void add(std::function<void()> work) { works_.push_back(std::move(work)); }

  /// Returns the seconds until the last one is done.
  double run() {
    std::latch ready(static_cast<std::ptrdiff_t>(works_.size()) + 1);
    std::vector<std::thread> threads;
    threads.reserve(works_.size());
    for (const auto& work : works_)
      threads.emplace_back([&] {
        ready.arrive_and_wait();
        work();
      });
    ready.arrive_and_wait();
    return secondsOf([&] {
      for (std::thread& thread : threads) thread.join();
    });
  }

 private:
  std::vector<std::function<void()>> works_;
};

/// The requests of one reading or writing of a file, in their order.
class Stream {
 public:
  Stream(const LimitPlan& plan, DirectFile& file) : plan_(plan), file_(file) {
    for (std::uint64_t number = 0; number < plan.depth; ++number)
      buffers_.emplace_back(plan.request, number + 1);
  }

  /// A part is not read before `before` has it; nullptr: at once. `after` hears of every request.
  void read(Race& race, const Progress* before, Progress* after) {
    eachAtATime(race, [this, before, after](Buffer& buffer, std::uint64_t part, auto... range) {
      if (before != nullptr) before->await(part);
      file_.read(buffer.data(), range...);
      if (after != nullptr) after->step(part);
    });
  }

  /// Nothing is written before `start` has its only part.
  void write(Race& race, const Progress& start, Progress& after) {
    eachAtATime(race, [this, &start, &after](Buffer& buffer, std::uint64_t part, auto... range) {
      start.await(0);
      buffer.mark(range...);
      file_.write(buffer.data(), range...);
      after.step(part);
    });
  }

 private:
  template <typename Step>
  void eachAtATime(Race& race, Step step) {
    for (Buffer& buffer : buffers_)
      race.add([this, &buffer, step] {
        for (std::uint64_t number = next_++; number < plan_.requests(); number = next_++) {
          const std::uint64_t offset = number * plan_.request;
          step(buffer, plan_.partOf(number), std::min(plan_.request, plan_.bytes - offset), offset);
        }
      });
  }

  const LimitPlan& plan_;
  DirectFile& file_;
  std::deque<Buffer> buffers_;
  std::atomic<std::uint64_t> next_ = 0;
};

/// The card: the second reading of a part begins when the first is done.
class Card {
 public:
  explicit Card(const LimitPlan& plan)
      : file_(plan.card, O_RDONLY, plan.readWay),
        first_(plan, file_),
        second_(plan, file_),
        isRead_(plan.requestsOfParts()) {}

  void join(Race& race) {
    first_.read(race, nullptr, &isRead_);
    second_.read(race, &isRead_, nullptr);
  }
  [[nodiscard]] bool isRefusedDirect() const { return file_.isRefusedDirect(); }

 private:
  DirectFile file_;
  Stream first_;
  Stream second_;
  Progress isRead_;
};

/// A copy: each part is flushed when it is written, and read back then.
class Copy {
 public:
  /// `flags` for open(2) say whether the file is emptied.
  Copy(const LimitPlan& plan, const std::string& path, int flags)
      : plan_(plan),
        output_(path, O_WRONLY | O_CREAT | flags, isCached(plan) ? Way::cached : Way::direct),
        input_(path, O_RDONLY, plan.readWay),
        writing_(plan, output_),
        reading_(plan, input_),
        isReserved_({1}),
        isWritten_(plan.requestsOfParts()),
        isFlushed_(std::vector<std::uint64_t>(plan.parts, 1)) {}

  void join(Race& race) {
    writing_.write(race, isReserved_, isWritten_);
    reading_.read(race, &isFlushed_, nullptr);
    race.add([this] {
      if (plan_.write == LimitPlan::Write::reserve) output_.reserve(plan_.bytes);
      isReserved_.step(0);
      for (std::uint64_t part = 0; part < plan_.parts; ++part) {
        isWritten_.await(part);
        output_.flush();
        isFlushed_.step(part);
      }
    });
  }
  [[nodiscard]] bool isRefusedDirect() const {
    return output_.isRefusedDirect() || input_.isRefusedDirect();
  }

 private:
  static bool isCached(const LimitPlan& plan) { return plan.write == LimitPlan::Write::cached; }

  const LimitPlan& plan_;
  DirectFile output_;
  DirectFile input_;
  Stream writing_;
  Stream reading_;
  Progress isReserved_;
  Progress isWritten_;
  Progress isFlushed_;
};

std::string pathOfCopy(const std::string& folder) {
  return folder + "/limit";
}

struct Outcome {
  double seconds;
  bool isRefusedDirect;
};

Outcome move(const LimitPlan& plan, int flags) {
  Race race;
  Card card(plan);
  card.join(race);
  std::deque<Copy> copies;
  for (const std::string& folder : plan.folders)
    copies.emplace_back(plan, pathOfCopy(folder), flags).join(race);
  Outcome outcome{race.run(), card.isRefusedDirect()};
  for (const Copy& copy : copies)
    outcome.isRefusedDirect = outcome.isRefusedDirect || copy.isRefusedDirect();
  return outcome;
}

}  // namespace

int main(int argc, char** argv) {
  const std::optional<LimitPlan> plan = LimitPlan::parse(argc, argv);
  if (!plan) return 1;
  Outcome outcome = move(*plan, O_TRUNC);
  if (plan->write == LimitPlan::Write::overwrite) outcome = move(*plan, 0);
  for (const std::string& folder : plan->folders) unlink(pathOfCopy(folder).c_str());
  std::printf(
      "%.4f s%s\n", outcome.seconds,
      outcome.isRefusedDirect ? ", through the cache where direct requests were refused" : "");
  return 0;
}
