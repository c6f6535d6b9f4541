#include "OffloadKit/Copying/LaneCopy.h"

#include "OffloadKit/Transfer/Transfer.h"

#include <cerrno>

namespace OffloadKit {

using PlatformKit::Folder;
using PlatformKit::Path;
using Kind = Reason::Kind;
using Outcome = OffloadedFile::Outcome;

namespace {

bool isCopyOf(const SourceFile& file, const PlatformKit::ItemStatus& there) {
  return there.kind == PlatformKit::ItemKind::regularFile && there.size == file.size &&
         std::chrono::abs(there.modified - file.modified) < std::chrono::seconds(2);
}

// Held folders answer these where a path would lead out of them.
bool leadsOut(int error) {
  return error == ELOOP || error == EXDEV;
}

}  // namespace

bool isThere(Folder& folder, const Path& path, const SourceFile& file) {
  const auto answer = folder.status(path);
  return answer.ok() && isCopyOf(file, answer.value());
}

void LaneCopy::choose(Folder& card, const std::string& temporary, KnownFolder& known) {
  if (lane_.givenUp() != nullptr) return;
  const auto there = lane_.folder().status(file_.relativePath);
  if (leadsOut(there.error())) return refuse(there.error());
  if (!there.ok()) return create(temporary, known);
  if (!isCopyOf(file_, there.value())) return fail(Reason(Kind::otherFileThere));
  const auto original = card.status(file_.relativePath);
  if (original.ok() && original.value().identity == there.value().identity) {
    return fail(Reason(Kind::isTheCardsOwn));
  }
  step_ = Existing{};
}

void LaneCopy::create(const std::string& temporary, KnownFolder& known) {
  const Path final = file_.relativePath;
  const Path parent = final.parent_path();
  if (known.path != parent) known = {parent, false};
  if (!known.exists && !parent.empty()) {
    if (const int error = createFolders(lane_.folder(), parent); error != 0) return refuse(error);
    known.exists = true;
  }
  auto copy = WritableCopy::create(lane_.folder(), temporary, final);
  if (!copy.ok()) return refuse(copy.error());
  step_.emplace<WritableCopy>(std::move(copy.value()));
}

void LaneCopy::refuse(int error) {
  if (leadsOut(error)) {
    fail(Reason(Kind::linkLeadsOut));
  } else {
    chooseError_ = error;
  }
}

void LaneCopy::write(std::span<const std::byte> chunk, std::uint64_t offset, std::uint64_t window) {
  if (!isWriting()) return;
  writeError_ =
      writeBehind(std::get<WritableCopy>(step_).file(), chunk, offset, window, file_.size);
}

void LaneCopy::setDates() {
  if (!isWriting()) return;
  // Ignored on purpose: a drive that keeps no dates gets its verified copy all the same.
  static_cast<void>(std::get<WritableCopy>(step_).file().setDates(file_.modified, file_.created));
}

bool LaneCopy::flush() {
  if (!isWriting()) return false;
  auto flushed = std::move(std::get<WritableCopy>(step_)).flush();
  writeError_ = flushed.error();
  if (!flushed.ok()) return false;
  step_.emplace<FlushedCopy>(std::move(flushed.value()));
  return true;
}

void LaneCopy::settle(const std::function<void(const Path&)>& afterWrite) {
  if (const Reason* givenUp = lane_.givenUp()) return fail(*givenUp);
  if (chooseError_ != 0) return fail(lane_.otherError(chooseError_));
  if (writeError_ != 0) return fail(lane_.contentError(writeError_));
  const auto* flushed = std::get_if<FlushedCopy>(&step_);
  if (flushed != nullptr && afterWrite) afterWrite(lane_.path() / flushed->temporary());
}

FileDigest* LaneCopy::startReadBack(HashKit::HashAlgorithm algorithm) {
  wasGivenUp_ = lane_.givenUp() != nullptr;
  if (auto* flushed = std::get_if<FlushedCopy>(&step_)) {
    return &flushed->readBack(algorithm, file_.size);
  }
  auto* existing = std::get_if<Existing>(&step_);
  if (existing == nullptr) return nullptr;
  existing->digest =
      std::make_unique<FileDigest>(lane_.folder(), file_.relativePath, algorithm, file_.size);
  return existing->digest.get();
}

void LaneCopy::giveUpReadBack() {
  if (FileDigest* reading = digest()) reading->giveUp();
}

FileDigest* LaneCopy::digest() const {
  if (const auto* flushed = std::get_if<FlushedCopy>(&step_)) return flushed->digest();
  const auto* existing = std::get_if<Existing>(&step_);
  return existing == nullptr ? nullptr : existing->digest.get();
}

Outcome LaneCopy::decide(const std::string& hash) {
  if (digest() != nullptr) compare(hash);
  if (verified_) return *verified_;
  const auto* reason = std::get_if<Reason>(&step_);
  return Outcome::failed(reason != nullptr ? *reason : Reason(Kind::notCopied));
}

void LaneCopy::compare(const std::string& hash) {
  const auto found = digest()->result();
  if (isLost(found.ok())) return fail(*lane_.givenUp());
  if (!found.ok()) {
    // The number tells whether the drive was pulled; else the reason is about reading.
    const Reason reason = lane_.otherError(found.error());
    return fail(lane_.isDisconnected() ? reason : Reason(Kind::copyUnreadable));
  }
  if (found.value() != hash) return fail(Reason(Kind::copyDiffers));
  if (std::holds_alternative<Existing>(step_)) {
    lane_.names().found(file_.relativePath);
    verified_ = Outcome::verified(true);
  } else if (auto proven = std::move(std::get<FlushedCopy>(step_)).prove(hash)) {
    giveFinalName(std::move(*proven));
  }
}

// Whether the lane was given up so that nothing more is to be tried there.
bool LaneCopy::isLost(bool isReadBack) const {
  if (lane_.givenUp() == nullptr) return false;
  // On a drive that another file filled, this one may well be whole.
  return !isReadBack || !wasGivenUp_ || !lane_.isPresent();
}

void LaneCopy::giveFinalName(ProvenCopy copy) {
  if (const int error = copy.giveFinalName(); error != 0) {
    return leadsOut(error) ? fail(Reason(Kind::linkLeadsOut)) : fail(lane_.otherError(error));
  }
  if (copy.modified() != file_.modified) {
    // Ignored on purpose: the content is verified, with or without its dates.
    static_cast<void>(lane_.folder().setDates(copy.final(), file_.modified, file_.created));
  }
  if (!lane_.moveKeepsContent()) {
    if (const int error = copy.flushAgain(); error != 0) return fail(lane_.contentError(error));
  }
  lane_.names().named(copy.final(), copy.identity());
  verified_ = Outcome::verified(false);
}

}  // namespace OffloadKit
