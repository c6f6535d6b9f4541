#include "OffloadKit/FileCopy.h"

#include "OffloadKit/ErrorSentences.h"
#include "OffloadKit/OffloadError.h"

#include <algorithm>
#include <cerrno>
#include <deque>

namespace OffloadKit {
namespace {

using PlatformKit::Path;
using PlatformKit::ReadableFile;
using PlatformKit::Result;
using PlatformKit::WritableFile;
using Outcome = OffloadedFile::Outcome;

WritableFile* writableOf(CopyTarget& target) {
  auto* write = std::get_if<WriteTarget>(&target);
  return write == nullptr ? nullptr : &write->copy.file();
}

}  // namespace

FileCopy::FileCopy(const SourceFile& file, CopyResources& resources)
    : file_(file),
      resources_(resources),
      source_(resources.plan.source / file.relativePath),
      outcomes_(resources.plan.destinations.size(), Outcome::failed("Not copied")),
      writeErrors_(resources.plan.destinations.size(), 0) {}

OffloadedFile FileCopy::run(const Advance& copied, const Advance& verifying) {
  targets_ =
      chooseTargets(resources_.system.fileSystem, file_, source_, resources_.plan.destinations,
                    resources_.temporaryNames, resources_.health, outcomes_);
  std::string hash = streamSource(copied);
  finishWrites();
  readBack(hash, verifying);
  return {file_, std::move(hash), std::move(outcomes_)};
}

std::string FileCopy::streamSource(const Advance& copied) {
  auto opened =
      resources_.system.fileSystem.openForReading(source_, PlatformKit::ReadMode::streamed);
  if (!opened.ok()) sourceUnreadable(": " + systemText(opened.error()));
  ReadableFile& source = *opened.value();
  const auto hasher = makeHasher(resources_.plan.algorithm);
  const std::span<std::byte> buffer = resources_.transferBuffer.bytes();
  std::uint64_t bytesRead = 0;
  throwIfCancelled();
  for (;;) {
    const auto count = source.readAt(buffer, bytesRead);
    if (!count.ok()) sourceUnreadable(": " + systemText(count.error()));
    if (count.value() == 0) break;
    const std::uint64_t next = bytesRead + count.value();
    // The card fetches the next chunk while the drives take this one.
    if (next < file_.size)
      source.prefetch(next, std::min<std::uint64_t>(buffer.size(), file_.size - next));
    writeChunk(buffer.first(count.value()), bytesRead, *hasher);
    source.discard(bytesRead, count.value());
    bytesRead = next;
    copied(count.value());
    throwIfCancelled();
  }
  if (bytesRead != file_.size) sourceUnreadable(" changed size while it was being read");
  return hasher->finalize();
}

void FileCopy::writeChunk(std::span<const std::byte> chunk, std::uint64_t offset,
                          HashKit::StreamingHasher& hasher) {
  const auto write = [&](std::size_t i) {
    WritableFile* file = writableOf(targets_[i]);
    if (file == nullptr || writeErrors_[i] != 0) return;
    writeErrors_[i] = writeBehind(*file, chunk, offset, resources_.plan.chunkSize, file_.size);
  };
  auto writing = resources_.workers.start(targets_.size(), write);
  hasher.update(chunk);
  writing.wait();
}

void FileCopy::finishWrites() {
  flushCopies();
  for (std::size_t i = 0; i < targets_.size(); ++i) {
    auto* write = std::get_if<WriteTarget>(&targets_[i]);
    if (write == nullptr) continue;
    write->copy.close();
    if (writeErrors_[i] == 0) {
      if (resources_.afterWrite) resources_.afterWrite(write->copy.temporary());
    } else {
      outcomes_[i] = Outcome::failed(resources_.health.contentError(i, writeErrors_[i]));
      targets_[i] = SkipTarget{};
    }
  }
}

void FileCopy::flushCopies() {
  const auto flush = [&](std::size_t i) {
    WritableFile* file = writableOf(targets_[i]);
    if (file == nullptr || writeErrors_[i] != 0) return;
    // Dated before the move, so that a cut between the two leaves a copy that the next run knows. A
    // drive that keeps no dates gets its verified copy all the same.
    static_cast<void>(file->setDates(file_.modified, file_.created));
    writeErrors_[i] = file->flush();
  };
  resources_.workers.parallelFor(targets_.size(), flush);
}

void FileCopy::readBack(const std::string& hash, const Advance& verifying) {
  auto& fileSystem = resources_.system.fileSystem;
  const auto algorithm = resources_.plan.algorithm;
  std::deque<FileDigest> digests;  // never moved: workers hold on to them
  std::vector<std::size_t> destinations;
  for (std::size_t i = 0; i < targets_.size(); ++i) {
    if (const auto* write = std::get_if<WriteTarget>(&targets_[i])) {
      digests.emplace_back(fileSystem, write->copy.temporary(), algorithm);
      destinations.push_back(i);
    } else if (const auto* resume = std::get_if<ResumeTarget>(&targets_[i])) {
      digests.emplace_back(fileSystem, resume->final, algorithm);
      destinations.push_back(i);
    }
  }
  if (resources_.plan.verifySource) digests.emplace_back(fileSystem, source_, algorithm);

  std::vector<FileDigest*> all;
  for (FileDigest& digest : digests) all.push_back(&digest);
  hashAll(all);
  verifying(file_.size * digests.size());

  if (resources_.plan.verifySource) {
    const auto second = digests.back().result();
    if (!second.ok() || second.value() != hash) {
      sourceUnreadable(" read differently the second time. The card or reader may be failing.");
    }
  }
  for (std::size_t j = 0; j < destinations.size(); ++j) {
    decide(destinations[j], digests[j].result(), hash);
  }
}

void FileCopy::hashAll(const std::vector<FileDigest*>& digests) {
  // Direct reads want whole pages; below two of them a second thread has nothing to do.
  constexpr std::size_t kPage = 4096;
  const std::size_t half = resources_.plan.chunkSize / 2 / kPage * kPage;
  const bool inPairs = half > 0 && file_.size > half;
  const std::size_t threads = inPairs ? 2 : 1;
  const auto hash = [&](std::size_t job) {
    std::span<std::byte> buffer = resources_.readBackBuffers[job / threads].bytes();
    if (inPairs) buffer = buffer.subspan(job % 2 * half, half);
    digests[job / threads]->work(buffer);
  };
  resources_.workers.parallelFor(digests.size() * threads, hash);
}

void FileCopy::decide(std::size_t destination, const Result<std::string>& copyHash,
                      const std::string& hash) {
  if (!copyHash.ok()) {
    // The sentence is about reading; the number still tells whether the drive was pulled.
    static_cast<void>(resources_.health.otherError(destination, copyHash.error()));
    outcomes_[destination] = Outcome::failed("The copy couldn't be read back");
    targets_[destination] = SkipTarget{};
  } else if (copyHash.value() != hash) {
    outcomes_[destination] = Outcome::failed("The copy didn't match the original");
    targets_[destination] = SkipTarget{};
  } else if (const auto* resume = std::get_if<ResumeTarget>(&targets_[destination])) {
    resources_.folders.verified(destination, resume->final, true);
    outcomes_[destination] = Outcome::verified(true);
  } else {
    giveFinalName(destination);
  }
}

void FileCopy::giveFinalName(std::size_t destination) {
  PendingCopy& copy = std::get<WriteTarget>(targets_[destination]).copy;
  if (const int error = copy.commit(); error != 0) {
    outcomes_[destination] = Outcome::failed(resources_.health.otherError(destination, error));
    targets_[destination] = SkipTarget{};
    return;
  }
  // Ignored on purpose: the content is verified, with or without its dates.
  static_cast<void>(
      resources_.system.fileSystem.setDates(copy.final(), file_.modified, file_.created));
  resources_.folders.verified(destination, copy.final(), false);
  outcomes_[destination] = Outcome::verified(false);
}

void FileCopy::throwIfCancelled() const {
  if (resources_.isCancelled()) throw OffloadError::cancelled();
}

void FileCopy::sourceUnreadable(const std::string& why) const {
  throw OffloadError::sourceUnreadable(file_.relativePath + why);
}

}  // namespace OffloadKit
