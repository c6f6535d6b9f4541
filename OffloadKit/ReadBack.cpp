#include "OffloadKit/ReadBack.h"

namespace OffloadKit {
namespace {

// One of `parts` equal parts of a read-back buffer; empty when there is not a page for each.
std::span<std::byte> part(CopyResources& resources, std::size_t reader, std::size_t parts,
                          std::size_t number) {
  const std::size_t size = resources.plan.chunkSize / parts / kDirectPage * kDirectPage;
  return resources.readBackBuffers[reader].bytes().subspan(number * size, size);
}

}  // namespace

void readBack(FileCopy& copy, CopyResources& resources) {
  const bool inPairs =
      !part(resources, 0, 2, 0).empty() && copy.file().size > part(resources, 0, 2, 0).size();
  const std::size_t threads = inPairs ? 2 : 1;
  const auto work = [&](std::size_t job) {
    const std::size_t reader = job / threads;
    if (FileDigest* digest = copy.digest(reader)) {
      digest->work(inPairs ? part(resources, reader, 2, job % 2)
                           : resources.readBackBuffers[reader].bytes());
    }
  };
  resources.workers.parallelFor(resources.readers() * threads, work);
}

void readBack(std::span<FileCopy* const> copies, CopyResources& resources) {
  const auto work = [&](std::size_t reader, std::size_t thread, std::size_t number) {
    if (FileDigest* digest = copies[number]->digest(reader)) {
      digest->work(part(resources, reader, kThreadsPerDrive, thread));
    }
  };
  onEveryDrive(resources.workers, resources.readers(), copies.size(), work);
}

}  // namespace OffloadKit
