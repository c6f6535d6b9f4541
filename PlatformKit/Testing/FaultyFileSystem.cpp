#include "PlatformKit/Testing/FaultyFileSystem.h"

#include <algorithm>
#include <cerrno>
#include <vector>

namespace PlatformKit::Testing {
namespace {

void intervene(const Intervention& intervention, std::span<std::byte> bytes) {
  if (!intervention.flipBit || bytes.empty()) return;
  const std::size_t bit = intervention.bit % (bytes.size() * 8);
  bytes[bit / 8] ^= static_cast<std::byte>(1U << (bit % 8));
}

}  // namespace

class FaultyReadableFile final : public ReadableFile {
 public:
  FaultyReadableFile(FaultyFileSystem& owner, Path path, std::unique_ptr<ReadableFile> below)
      : owner_(owner), path_(std::move(path)), below_(std::move(below)) {
    ++owner_.openFiles_;
  }
  ~FaultyReadableFile() override { --owner_.openFiles_; }

  Result<std::size_t> readAt(std::span<std::byte> buffer, std::uint64_t offset) override {
    const Intervention intervention = owner_.ask(Call::read, path_, offset);
    if (intervention.error != 0) return ErrorNumber{intervention.error};
    auto count = below_->readAt(buffer.first(std::min(buffer.size(), intervention.limit)), offset);
    if (count.ok()) intervene(intervention, buffer.first(count.value()));
    return count;
  }
  void prefetch(std::uint64_t offset, std::uint64_t length) override {
    below_->prefetch(offset, length);
  }
  void discard(std::uint64_t offset, std::uint64_t length) override {
    below_->discard(offset, length);
  }
  int flush() override {
    const int error = owner_.ask(Call::flushRead, path_).error;
    return error != 0 ? error : below_->flush();
  }

 private:
  FaultyFileSystem& owner_;
  const Path path_;
  std::unique_ptr<ReadableFile> below_;
};

class FaultyWritableFile final : public WritableFile {
 public:
  FaultyWritableFile(FaultyFileSystem& owner, Path path, std::unique_ptr<WritableFile> below)
      : owner_(owner), path_(std::move(path)), below_(std::move(below)) {
    ++owner_.openFiles_;
  }
  ~FaultyWritableFile() override { --owner_.openFiles_; }

  Result<std::size_t> write(std::span<const std::byte> bytes) override {
    const Intervention intervention = owner_.ask(Call::write, path_, written_);
    if (intervention.error != 0) return ErrorNumber{intervention.error};
    std::vector<std::byte> changed(bytes.begin(), bytes.end());
    intervene(intervention, changed);
    const std::span<const std::byte> given(changed);
    auto count = below_->write(given.first(std::min(given.size(), intervention.limit)));
    if (count.ok()) written_ += count.value();
    return count;
  }
  int startWriteback(std::uint64_t offset, std::uint64_t length) override {
    const int error = owner_.ask(Call::startWriteback, path_, offset).error;
    return error != 0 ? error : below_->startWriteback(offset, length);
  }
  int finishWriteback(std::uint64_t offset, std::uint64_t length) override {
    const int error = owner_.ask(Call::finishWriteback, path_, offset).error;
    return error != 0 ? error : below_->finishWriteback(offset, length);
  }
  Result<ItemIdentity> identity() override {
    const int error = owner_.ask(Call::identity, path_).error;
    if (error != 0) return ErrorNumber{error};
    return below_->identity();
  }
  int setDates(Date modified, std::optional<Date> created) override {
    const int error = owner_.ask(Call::setFileDates, path_).error;
    return error != 0 ? error : below_->setDates(modified, created);
  }
  int flush() override {
    const int error = owner_.ask(Call::flush, path_).error;
    return error != 0 ? error : below_->flush();
  }

 private:
  FaultyFileSystem& owner_;
  const Path path_;
  std::unique_ptr<WritableFile> below_;
  std::uint64_t written_ = 0;
};

FaultyFileSystem::Script FaultyFileSystem::failing(Call call, std::string part, int error) {
  return [call, part = std::move(part), error](const CallInfo& info) {
    const bool hit = info.call == call && info.path.native().find(part) != std::string::npos;
    return Intervention{hit ? error : 0};
  };
}

Intervention FaultyFileSystem::ask(Call call, const Path& path, std::uint64_t offset,
                                   ReadMode mode) {
  const std::lock_guard lock(mutex_);
  return script_ ? script_({call, path, offset, mode}) : Intervention{};
}

Result<ItemStatus> FaultyFileSystem::status(const Path& path) {
  const Intervention intervention = ask(Call::status, path);
  if (intervention.error != 0) return ErrorNumber{intervention.error};
  auto status = below_.status(path);
  if (status.ok() && intervention.otherVolume) ++status.value().identity.volume;
  return status;
}

Result<Path> FaultyFileSystem::resolve(const Path& path) {
  const int error = ask(Call::resolve, path).error;
  if (error != 0) return ErrorNumber{error};
  return below_.resolve(path);
}

Result<FolderListing> FaultyFileSystem::list(const Path& folder) {
  const Intervention intervention = ask(Call::list, folder);
  if (intervention.error != 0) return ErrorNumber{intervention.error};
  auto listed = below_.list(folder);
  if (!listed.ok()) return listed;
  auto& entries = listed.value().entries;
  if (entries.size() > intervention.limit) {
    entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(intervention.limit), entries.end());
    listed.value().error = EIO;
  }
  for (FolderEntry& entry : entries) {
    const int error = ask(Call::entryStatus, folder / entry.name).error;
    if (error != 0) entry.status = ErrorNumber{error};
  }
  return listed;
}

Result<std::unique_ptr<ReadableFile>> FaultyFileSystem::openForReading(const Path& path,
                                                                       ReadMode mode) {
  const int error = ask(Call::openForReading, path, 0, mode).error;
  if (error != 0) return ErrorNumber{error};
  auto opened = below_.openForReading(path, mode);
  if (!opened.ok()) return opened;
  return std::unique_ptr<ReadableFile>(
      std::make_unique<FaultyReadableFile>(*this, path, std::move(opened.value())));
}

Result<std::unique_ptr<WritableFile>> FaultyFileSystem::createFile(const Path& path) {
  const int error = ask(Call::createFile, path).error;
  if (error != 0) return ErrorNumber{error};
  auto created = below_.createFile(path);
  if (!created.ok()) return created;
  return std::unique_ptr<WritableFile>(
      std::make_unique<FaultyWritableFile>(*this, path, std::move(created.value())));
}

int FaultyFileSystem::createFolder(const Path& path) {
  const int error = ask(Call::createFolder, path).error;
  return error != 0 ? error : below_.createFolder(path);
}

int FaultyFileSystem::moveWithoutReplacing(const Path& from, const Path& to) {
  const int error = ask(Call::move, to).error;
  return error != 0 ? error : below_.moveWithoutReplacing(from, to);
}

int FaultyFileSystem::moveReplacing(const Path& from, const Path& to) {
  const int error = ask(Call::moveReplacing, to).error;
  return error != 0 ? error : below_.moveReplacing(from, to);
}

int FaultyFileSystem::removeFile(const Path& path) {
  const int error = ask(Call::remove, path).error;
  return error != 0 ? error : below_.removeFile(path);
}

int FaultyFileSystem::setDates(const Path& path, Date modified, std::optional<Date> created) {
  const int error = ask(Call::setDates, path).error;
  return error != 0 ? error : below_.setDates(path, modified, created);
}

Result<std::unique_ptr<FolderLock>> FaultyFileSystem::lockFolder(const Path& folder) {
  const int error = ask(Call::lockFolder, folder).error;
  if (error != 0) return ErrorNumber{error};
  return below_.lockFolder(folder);
}

int FaultyFileSystem::flushFolder(const Path& folder) {
  const int error = ask(Call::flushFolder, folder).error;
  return error != 0 ? error : below_.flushFolder(folder);
}

int FaultyFileSystem::flushVolume(const Path& folder) {
  const int error = ask(Call::flushVolume, folder).error;
  return error != 0 ? error : below_.flushVolume(folder);
}

int FaultyFileSystem::checkWritable(const Path& path) {
  const int error = ask(Call::checkWritable, path).error;
  return error != 0 ? error : below_.checkWritable(path);
}

}  // namespace PlatformKit::Testing
