#include "OffloadKit/Copying/FileCopy.h"

#include "OffloadKit/Records/OffloadError.h"
#include "OffloadKit/Transfer/Transfer.h"

#include <algorithm>

namespace OffloadKit {

using PlatformKit::WritableFile;
using Outcome = OffloadedFile::Outcome;

FileCopy::FileCopy(const SourceFile& file, CopyResources& resources)
    : file_(file),
      resources_(resources),
      source_(resources.plan.source / file.relativePath),
      digests_(resources.plan.destinations.size() + 1) {
  copies_.reserve(resources.plan.destinations.size());
  for (std::size_t i = 0; i < resources.plan.destinations.size(); ++i) {
    copies_.push_back({std::nullopt, Outcome::failed(Reason(Reason::Kind::notCopied))});
  }
}

WritableFile* FileCopy::Copy::writable() {
  auto* write = as<WriteTarget>();
  return write == nullptr || writeError != 0 ? nullptr : write->copy.file();
}

void FileCopy::Copy::fail(Reason reason) {
  outcome = Outcome::failed(std::move(reason));
  choice.reset();
}

void FileCopy::fetch() {
  if (original_) return;
  const bool atOnce = file_.size <= resources_.plan.chunkSize;
  const auto mode = atOnce && file_.size >= kOwnRequests ? PlatformKit::ReadMode::pastCache
                                                         : PlatformKit::ReadMode::streamed;
  original_.emplace(resources_.system.fileSystem.openForReading(source_, mode));
  if (original_->ok() && file_.size > 0) {
    original_->value()->prefetch(0, std::min<std::uint64_t>(file_.size, resources_.plan.chunkSize));
  }
}

PlatformKit::ReadableFile& FileCopy::original() {
  fetch();
  if (!original_->ok()) sourceUnreadable(original_->error());
  return *original_->value();
}

std::unique_ptr<PlatformKit::ReadableFile> FileCopy::openPastCache() {
  auto opened =
      resources_.system.fileSystem.openForReading(source_, PlatformKit::ReadMode::pastCache);
  if (!opened.ok()) sourceUnreadable(opened.error());
  return std::move(opened.value());
}

void FileCopy::chooseTarget(std::size_t destination, KnownFolder& folder) {
  if (resources_.health.givenUp(destination) != nullptr) return;
  copies_[destination].choice.emplace(OffloadKit::chooseTarget(
      resources_.system.fileSystem, file_, source_, resources_.plan.destinations[destination],
      resources_.temporaryNames.forFile(file_.relativePath), folder));
}

void FileCopy::settleTargets() {
  for (std::size_t i = 0; i < copies_.size(); ++i) {
    Copy& copy = copies_[i];
    if (const Reason* reason = resources_.health.givenUp(i)) {
      copy.fail(*reason);
    } else if (const int error = copy.choice->error; error != 0) {
      copy.fail(resources_.health.otherError(i, error));
    } else if (std::optional<Reason>& refusal = copy.choice->refusal) {
      copy.fail(*std::move(refusal));
    }
  }
}

void FileCopy::write(std::size_t destination, std::span<const std::byte> chunk,
                     std::uint64_t offset) {
  Copy& copy = copies_[destination];
  if (WritableFile* file = copy.writable()) {
    copy.writeError = writeBehind(*file, chunk, offset, resources_.plan.chunkSize, file_.size);
  }
}

bool FileCopy::isWriting() {
  return std::any_of(copies_.begin(), copies_.end(),
                     [](Copy& copy) { return copy.writable() != nullptr; });
}

void FileCopy::setDates(std::size_t destination) {
  // Ignored on purpose: a drive that keeps no dates gets its verified copy all the same.
  if (WritableFile* file = copies_[destination].writable()) {
    static_cast<void>(file->setDates(file_.modified, file_.created));
  }
}

bool FileCopy::flush(std::size_t destination) {
  Copy& copy = copies_[destination];
  WritableFile* file = copy.writable();
  if (file == nullptr) return false;
  copy.writeError = file->flush();
  copy.as<WriteTarget>()->copy.close();
  return copy.writeError == 0;
}

void FileCopy::settleWrites() {
  for (std::size_t i = 0; i < copies_.size(); ++i) {
    Copy& copy = copies_[i];
    auto* write = copy.as<WriteTarget>();
    if (write == nullptr) continue;
    write->copy.close();
    if (copy.writeError != 0) {
      copy.fail(resources_.health.contentError(i, copy.writeError));
    } else if (resources_.afterWrite) {
      resources_.afterWrite(write->copy.temporary());
    }
  }
}

std::size_t FileCopy::prepareReadBack() {
  std::size_t count = 0;
  const auto add = [&](std::size_t reader, const PlatformKit::Path& path) {
    digests_[reader] = std::make_unique<FileDigest>(resources_.system.fileSystem, path,
                                                    resources_.plan.algorithm, file_.size);
    ++count;
  };
  for (std::size_t i = 0; i < copies_.size(); ++i) {
    copies_[i].wasGivenUp = resources_.health.givenUp(i) != nullptr;
    if (const auto* write = copies_[i].as<WriteTarget>()) add(i, write->copy.temporary());
    if (const auto* resume = copies_[i].as<ResumeTarget>()) add(i, resume->final);
  }
  if (resources_.plan.verifySource) add(copies_.size(), source_);
  return count;
}

void FileCopy::giveUpDigests() {
  for (const auto& digest : digests_) {
    if (digest) digest->giveUp();
  }
}

OffloadedFile FileCopy::decide(std::string hash) {
  if (const FileDigest* original = digest(copies_.size())) {
    const auto second = original->result();
    if (!second.ok() || second.value() != hash) {
      throw OffloadError::sourceUnreadable(
          Reason(Reason::Kind::readDifferently, {file_.relativePath}));
    }
  }
  OffloadedFile result{file_, std::nullopt, {}};
  for (std::size_t i = 0; i < copies_.size(); ++i) {
    if (digest(i) != nullptr) compare(i, hash);
    result.outcomes.push_back(std::move(copies_[i].outcome));
  }
  result.hash = std::move(hash);
  return result;
}

void FileCopy::compare(std::size_t destination, const std::string& hash) {
  Copy& copy = copies_[destination];
  const auto copyHash = digest(destination)->result();
  if (isLost(destination, copyHash.ok())) {
    copy.fail(*resources_.health.givenUp(destination));
  } else if (!copyHash.ok()) {
    // The sentence is about reading; the number still tells whether the drive was pulled.
    static_cast<void>(resources_.health.otherError(destination, copyHash.error()));
    copy.fail(Reason(Reason::Kind::copyUnreadable));
  } else if (copyHash.value() != hash) {
    copy.fail(Reason(Reason::Kind::copyDiffers));
  } else if (const auto* resume = copy.as<ResumeTarget>()) {
    resources_.folders.verified(destination, resume->final, true);
    copy.outcome = Outcome::verified(true);
  } else if (auto* write = copy.as<WriteTarget>()) {
    giveFinalName(destination, write->copy);
  }
}

bool FileCopy::isLost(std::size_t destination, bool isReadBack) const {
  const DestinationHealth& health = resources_.health;
  if (health.givenUp(destination) == nullptr) return false;
  // On a drive that another file filled, this one may well be whole.
  return !isReadBack || !copies_[destination].wasGivenUp || !health.isPresent(destination);
}

void FileCopy::giveFinalName(std::size_t destination, PendingCopy& pending) {
  Copy& copy = copies_[destination];
  if (const int error = pending.commit(); error != 0) {
    copy.fail(resources_.health.otherError(destination, error));
    return;
  }
  if (pending.modified() != file_.modified) {
    // Ignored on purpose: the content is verified, with or without its dates.
    static_cast<void>(
        resources_.system.fileSystem.setDates(pending.final(), file_.modified, file_.created));
  }
  if (!resources_.health.moveKeepsContent(destination)) {
    if (const int error = digest(destination)->flush(); error != 0) {
      copy.fail(resources_.health.contentError(destination, error));
      return;
    }
  }
  resources_.folders.verified(destination, pending.final(), false);
  copy.outcome = Outcome::verified(false);
}

void FileCopy::sourceUnreadable(int error) const {
  throw OffloadError::sourceUnreadable(Reason::about(file_.relativePath, Reason::ofSystem(error)));
}

void FileCopy::sourceChangedSize() const {
  throw OffloadError::sourceUnreadable(Reason(Reason::Kind::changedSize, {file_.relativePath}));
}

}  // namespace OffloadKit
