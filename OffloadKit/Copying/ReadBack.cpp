#include "OffloadKit/Copying/ReadBack.h"

#include "OffloadKit/Transfer/Transfer.h"

#include <latch>

namespace OffloadKit {
namespace {

// One of `parts` equal parts of a read-back buffer; empty when there is not a page for each.
std::span<std::byte> part(CopyResources& resources, std::size_t reader, std::size_t parts,
                          std::size_t number) {
  const std::size_t size = resources.plan.chunkSize / parts / kDirectPage * kDirectPage;
  return resources.readBackBuffers[reader].bytes().subspan(number * size, size);
}

// Lets the workers that are to read the originals a second time wait for the first.
class BothReadings {
 public:
  BothReadings(std::span<FileCopy* const> copies, const FirstReading& firstReading)
      : copies_(copies), firstReading_(firstReading) {}

  void readFirst() {
    try {
      if (firstReading_) firstReading_();
    } catch (...) {
      for (FileCopy* copy : copies_) copy->giveUpDigests();
      done_.count_down();
      throw;
    }
    done_.count_down();
  }
  void waitForFirst() { done_.wait(); }

 private:
  std::span<FileCopy* const> copies_;
  const FirstReading& firstReading_;
  std::latch done_{1};
};

}  // namespace

void readBack(FileCopy& copy, CopyResources& resources, const FirstReading& firstReading) {
  const bool inPairs =
      !part(resources, 0, 2, 0).empty() && copy.file().size > part(resources, 0, 2, 0).size();
  const std::size_t threads = inPairs ? 2 : 1;
  FileCopy* const copies[] = {&copy};
  BothReadings readings(copies, firstReading);
  const auto work = [&](std::size_t job) {
    const std::size_t reader = job / threads;
    FileDigest* digest = copy.digest(reader);
    if (digest == nullptr) return;
    if (reader == resources.originalReader()) readings.waitForFirst();
    digest->work(inPairs ? part(resources, reader, 2, job % 2)
                         : resources.readBackBuffers[reader].bytes());
  };
  auto working = resources.workers.start(resources.readers() * threads, work);
  readings.readFirst();
  working.wait();
}

void readBack(std::span<FileCopy* const> copies, CopyResources& resources,
              const FirstReading& firstReading) {
  BothReadings readings(copies, firstReading);
  const auto work = [&](std::size_t reader, std::size_t thread, std::size_t number) {
    FileDigest* digest = copies[number]->digest(reader);
    if (digest == nullptr) return;
    if (reader == resources.originalReader()) readings.waitForFirst();
    digest->work(part(resources, reader, kThreadsPerDrive, thread));
  };
  onEveryDrive(resources.workers, resources.readers(), kThreadsPerDrive, copies.size(), work,
               [&] { readings.readFirst(); });
}

}  // namespace OffloadKit
