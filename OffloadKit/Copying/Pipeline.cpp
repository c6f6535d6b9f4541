#include "OffloadKit/Copying/Pipeline.h"

#include "OffloadKit/Transfer/Transfer.h"

#include <algorithm>
#include <atomic>
#include <latch>
#include <optional>

namespace OffloadKit {
namespace {

// Each of `lanes` gets the numbers below `count` handed out to `threads` threads of its own.
template <class Step>
auto handedOut(std::vector<std::atomic<std::size_t>>& next, std::size_t threads, std::size_t count,
               const Step& step) {
  return [&next, threads, count, &step](std::size_t job) {
    const std::size_t lane = job / threads;
    for (std::size_t mine = next[lane]++; mine < count; mine = next[lane]++) {
      step(lane, job % threads, mine);
    }
  };
}

// Lets the threads that read the originals a second time wait for the first.
class FirstReading {
 public:
  FirstReading(std::span<const ReadBackLane> lanes, const std::function<void()>& read)
      : lanes_(lanes), read_(read) {}

  void run() {
    try {
      if (read_) read_();
    } catch (...) {
      giveUp();
      done_.count_down();
      throw;
    }
    done_.count_down();
  }
  void wait() { done_.wait(); }

 private:
  void giveUp() {
    for (const ReadBackLane& lane : lanes_) {
      for (FileDigest* digest : lane.digests) {
        if (digest != nullptr) digest->giveUp();
      }
    }
  }

  std::span<const ReadBackLane> lanes_;
  const std::function<void()>& read_;
  std::latch done_{1};
};

}  // namespace

Pipeline::Pipeline(std::size_t lanes, std::size_t chunkSize)
    : lanes_(lanes),
      chunkSize_(chunkSize),
      // A read-back reads every copy and the card at once.
      workers_(std::max(threadsPerDrive * (lanes + 1), flushesPerDrive * lanes)),
      readers_(threadsPerDrive),
      transferBuffer_(chunkSize) {
  for (std::size_t i = 0; i <= lanes; ++i) readBackBuffers_.emplace_back(chunkSize);
}

bool Pipeline::takesGroups() const {
  return chunkSize_ >= threadsPerDrive * kDirectPage;
}

// Two take turns, so that one is filled while the drives take the other. The second is the one for
// the original's second reading, which comes later.
std::span<std::byte> Pipeline::roundMemory(std::size_t round) {
  return round % 2 == 0 ? transferBuffer_.bytes() : readBackBuffers_.back().bytes();
}

void Pipeline::prime(Load& load) {
  firstParts_ = load.layOut(0, roundMemory(0));
  const auto read = [&](std::size_t part) { load.read(0, part); };
  readers_.parallelFor(firstParts_, read);
}

void Pipeline::transfer(Load& load) {
  std::size_t parts = firstParts_;
  for (std::size_t round = 0; parts > 0; ++round) {
    load.accept(round);
    parts = load.layOut(round + 1, roundMemory(round + 1));
    const auto read = [&](std::size_t part) { load.read(round + 1, part); };
    const auto write = [&](std::size_t lane) { load.write(round, lane); };
    auto reading = readers_.start(parts, read);
    std::optional<PlatformKit::WorkerPool::Batch> writing;
    // Where nothing is to be written, the workers may be reading the copies of an earlier run.
    if (load.isWriting()) writing.emplace(workers_.start(lanes_, write));
    load.meanwhile(round);
    if (writing) writing->wait();
    reading.wait();
    load.done(round);
  }
}

// One of `threads` equal parts of a lane's buffer, of whole pages; empty when there is not a page
// for each.
std::span<std::byte> Pipeline::readBackMemory(std::size_t lane, std::size_t threads,
                                              std::size_t thread) {
  const auto whole = readBackBuffers_[lane].bytes().first(chunkSize_);
  if (threads == 1) return whole;
  const std::size_t size = chunkSize_ / threads / kDirectPage * kDirectPage;
  return whole.subspan(thread * size, size);
}

void Pipeline::readBack(std::span<const ReadBackLane> lanes, std::uint64_t fileSize,
                        const std::function<void()>& firstReading) {
  std::size_t files = 0;
  for (const ReadBackLane& lane : lanes) files = std::max(files, lane.digests.size());
  const std::size_t half = readBackMemory(0, 2, 0).size();
  const bool inTurn = half > 0 && fileSize > half;
  const std::size_t threads = files > 1 ? threadsPerDrive : (inTurn ? 2 : 1);
  FirstReading first(lanes, firstReading);
  const auto work = [&](std::size_t lane, std::size_t thread, std::size_t number) {
    if (number >= lanes[lane].digests.size()) return;
    FileDigest* digest = lanes[lane].digests[number];
    if (digest == nullptr) return;
    if (lanes[lane].isSecondReading) first.wait();
    digest->work(readBackMemory(lane, threads, thread));
  };
  std::vector<std::atomic<std::size_t>> next(lanes.size());
  const auto ofMany = handedOut(next, threads, files, work);
  // All threads of a lane work on the one file.
  const auto ofOne = [&](std::size_t job) { work(job / threads, job % threads, 0); };
  const std::size_t jobs = lanes.size() * threads;
  auto working = files > 1 ? workers_.start(jobs, ofMany) : workers_.start(jobs, ofOne);
  first.run();
  working.wait();
}

void Pipeline::onEveryLane(const std::function<void(std::size_t)>& step,
                           const std::function<void()>& meanwhile) {
  auto working = workers_.start(lanes_, step);
  if (meanwhile) meanwhile();
  working.wait();
}

void Pipeline::flushEach(std::size_t count,
                         const std::function<void(std::size_t, std::size_t)>& step) {
  std::vector<std::atomic<std::size_t>> next(lanes_);
  const auto each = [&](std::size_t lane, std::size_t /*thread*/, std::size_t number) {
    step(lane, number);
  };
  workers_.parallelFor(lanes_ * flushesPerDrive, handedOut(next, flushesPerDrive, count, each));
}

}  // namespace OffloadKit
