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

class FaultyReadableFile final : public ReadableFile {
 public:
  FaultyReadableFile(Faults& owner, Path path, std::unique_ptr<ReadableFile> below)
      : owner_(owner), path_(std::move(path)), below_(std::move(below)) {
    ++owner_.openFiles;
  }
  ~FaultyReadableFile() override { --owner_.openFiles; }

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
  Faults& owner_;
  const Path path_;
  std::unique_ptr<ReadableFile> below_;
};

class FaultyWritableFile final : public WritableFile {
 public:
  FaultyWritableFile(Faults& owner, Path path, std::unique_ptr<WritableFile> below)
      : owner_(owner), path_(std::move(path)), below_(std::move(below)) {
    ++owner_.openFiles;
  }
  ~FaultyWritableFile() override { --owner_.openFiles; }

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
  Faults& owner_;
  const Path path_;
  std::unique_ptr<WritableFile> below_;
  std::uint64_t written_ = 0;
};

class FaultyFolder final : public FaultyItems<Folder> {
 public:
  FaultyFolder(Faults& faults, std::unique_ptr<Folder> below, Path base)
      : FaultyItems(faults, *below, std::move(base)), held_(std::move(below)) {}

 private:
  const std::unique_ptr<Folder> held_;
};

}  // namespace

Intervention Faults::ask(Call call, const Path& path, std::uint64_t offset, ReadMode mode) {
  const std::lock_guard lock(mutex_);
  return script ? script({call, path, offset, mode}) : Intervention{};
}

template <class Interface>
Result<ItemStatus> FaultyItems<Interface>::status(const Path& path) {
  const Intervention intervention = faults_.ask(Call::status, at(path));
  if (intervention.error != 0) return ErrorNumber{intervention.error};
  auto status = below_.status(path);
  if (status.ok() && intervention.otherVolume) ++status.value().identity.volume;
  return status;
}

template <class Interface>
Result<FolderListing> FaultyItems<Interface>::list(const Path& path) {
  const Intervention intervention = faults_.ask(Call::list, at(path));
  if (intervention.error != 0) return ErrorNumber{intervention.error};
  auto listed = below_.list(path);
  if (!listed.ok()) return listed;
  auto& entries = listed.value().entries;
  if (entries.size() > intervention.limit) {
    entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(intervention.limit), entries.end());
    listed.value().error = EIO;
  }
  for (FolderEntry& entry : entries) {
    const int error = faults_.ask(Call::entryStatus, at(path) / entry.name).error;
    if (error != 0) entry.status = ErrorNumber{error};
  }
  return listed;
}

template <class Interface>
Result<std::unique_ptr<ReadableFile>> FaultyItems<Interface>::openForReading(const Path& path,
                                                                             ReadMode mode) {
  const int error = faults_.ask(Call::openForReading, at(path), 0, mode).error;
  if (error != 0) return ErrorNumber{error};
  auto opened = below_.openForReading(path, mode);
  if (!opened.ok()) return opened;
  return std::unique_ptr<ReadableFile>(
      std::make_unique<FaultyReadableFile>(faults_, at(path), std::move(opened.value())));
}

template <class Interface>
Result<std::unique_ptr<WritableFile>> FaultyItems<Interface>::createFile(const Path& path) {
  const int error = errorOf(Call::createFile, path);
  if (error != 0) return ErrorNumber{error};
  auto created = below_.createFile(path);
  if (!created.ok()) return created;
  return std::unique_ptr<WritableFile>(
      std::make_unique<FaultyWritableFile>(faults_, at(path), std::move(created.value())));
}

template <class Interface>
int FaultyItems<Interface>::createFolder(const Path& path) {
  const int error = errorOf(Call::createFolder, path);
  return error != 0 ? error : below_.createFolder(path);
}

template <class Interface>
int FaultyItems<Interface>::moveWithoutReplacing(const Path& from, const Path& to) {
  const int error = errorOf(Call::move, to);
  return error != 0 ? error : below_.moveWithoutReplacing(from, to);
}

template <class Interface>
int FaultyItems<Interface>::moveReplacing(const Path& from, const Path& to) {
  const int error = errorOf(Call::moveReplacing, to);
  return error != 0 ? error : below_.moveReplacing(from, to);
}

template <class Interface>
int FaultyItems<Interface>::removeFile(const Path& path) {
  const int error = errorOf(Call::remove, path);
  return error != 0 ? error : below_.removeFile(path);
}

template <class Interface>
int FaultyItems<Interface>::setDates(const Path& path, Date modified, std::optional<Date> created) {
  const int error = errorOf(Call::setDates, path);
  return error != 0 ? error : below_.setDates(path, modified, created);
}

template <class Interface>
Result<std::unique_ptr<FolderLock>> FaultyItems<Interface>::lockFolder(const Path& path) {
  const int error = errorOf(Call::lockFolder, path);
  if (error != 0) return ErrorNumber{error};
  return below_.lockFolder(path);
}

template <class Interface>
int FaultyItems<Interface>::flushFolder(const Path& path) {
  const int error = errorOf(Call::flushFolder, path);
  return error != 0 ? error : below_.flushFolder(path);
}

template <class Interface>
int FaultyItems<Interface>::flushVolume(const Path& path) {
  const int error = errorOf(Call::flushVolume, path);
  return error != 0 ? error : below_.flushVolume(path);
}

template class FaultyItems<FileSystem>;

Faults::Script FaultyFileSystem::failing(Call call, std::string part, int error) {
  return [call, part = std::move(part), error](const CallInfo& info) {
    const bool hit = info.call == call && info.path.native().find(part) != std::string::npos;
    return Intervention{hit ? error : 0};
  };
}

Result<Path> FaultyFileSystem::resolve(const Path& path) {
  const int error = ask(Call::resolve, path).error;
  if (error != 0) return ErrorNumber{error};
  return below_.resolve(path);
}

Result<std::unique_ptr<Folder>> FaultyFileSystem::openFolder(const Path& path, Mounts mounts) {
  const int error = ask(Call::openFolder, path).error;
  if (error != 0) return ErrorNumber{error};
  auto opened = below_.openFolder(path, mounts);
  if (!opened.ok()) return opened;
  return std::unique_ptr<Folder>(
      std::make_unique<FaultyFolder>(static_cast<Faults&>(*this), std::move(opened.value()), path));
}

int FaultyFileSystem::checkWritable(const Path& path) {
  const int error = ask(Call::checkWritable, path).error;
  return error != 0 ? error : below_.checkWritable(path);
}

}  // namespace PlatformKit::Testing
