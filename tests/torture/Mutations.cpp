#include "tests/torture/Mutations.h"

#include "tests/torture/PassThrough.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <mutex>

namespace Torture {
namespace {

using PlatformKit::ReadableFile;
using PlatformKit::ReadMode;
using PlatformKit::Result;
using PlatformKit::WritableFile;

template <class File, class Below, class... Arguments>
Result<std::unique_ptr<Below>> wrapped(Result<std::unique_ptr<Below>> opened,
                                       Arguments&&... arguments) {
  if (!opened.ok()) return opened;
  return std::unique_ptr<Below>(
      std::make_unique<File>(std::move(opened.value()), std::forward<Arguments>(arguments)...));
}

class FlushesNothing final : public PassThrough {
 public:
  FlushesNothing(PlatformKit::FileSystem& below, Mutation what) : PassThrough(below), what_(what) {}

  Result<std::unique_ptr<WritableFile>> createFile(const Path& path) override {
    if (what_ != Mutation::copiesNotFlushed) return below_.createFile(path);
    return wrapped<File>(below_.createFile(path));
  }
  Result<std::unique_ptr<ReadableFile>> openForReading(const Path& path, ReadMode mode) override {
    if (what_ != Mutation::movedNotFlushed) return below_.openForReading(path, mode);
    return wrapped<ReadFile>(below_.openForReading(path, mode));
  }
  int flushFolder(const Path& folder) override {
    if (what_ == Mutation::foldersNotFlushed) return 0;
    return answer(below_.flushFolder(folder));
  }
  int flushVolume(const Path& folder) override {
    if (what_ == Mutation::volumesNotFlushed) return 0;
    return answer(below_.flushVolume(folder));
  }

 private:
  [[nodiscard]] int answer(int error) const {
    return what_ == Mutation::flushErrorsLost ? 0 : error;
  }

  class ReadFile final : public PassThroughReadable {
   public:
    using PassThroughReadable::PassThroughReadable;
    int flush() override { return 0; }
  };
  class File final : public PassThroughWritable {
   public:
    using PassThroughWritable::PassThroughWritable;
    int flush() override { return 0; }
  };

  const Mutation what_;
};

class NamesEarly final : public PassThrough {
 public:
  using PassThrough::PassThrough;

  Result<std::unique_ptr<WritableFile>> createFile(const Path& path) override {
    return wrapped<File>(below_.createFile(path), *this, path);
  }
  Result<PlatformKit::ItemStatus> status(const Path& path) override {
    return below_.status(real(path));
  }
  Result<std::unique_ptr<ReadableFile>> openForReading(const Path& path, ReadMode mode) override {
    return below_.openForReading(real(path), mode);
  }
  int moveWithoutReplacing(const Path& from, const Path& to) override {
    const Path now = real(from);
    return now == to ? 0 : below_.moveWithoutReplacing(now, to);
  }
  int moveReplacing(const Path& from, const Path& to) override {
    return below_.moveReplacing(real(from), to);
  }
  int removeFile(const Path& path) override { return below_.removeFile(real(path)); }

 private:
  class File final : public PassThroughWritable {
   public:
    File(std::unique_ptr<WritableFile> below, NamesEarly& owner, Path path)
        : PassThroughWritable(std::move(below)), owner_(owner), path_(std::move(path)) {}
    int flush() override {
      if (const int error = below_->flush(); error != 0) return error;
      return owner_.name(path_);
    }

   private:
    NamesEarly& owner_;
    const Path path_;
  };

  int name(const Path& temporary) {
    const std::string name = temporary.filename();
    const Path final = temporary.parent_path() / name.substr(1, name.rfind('.') - 1);
    const std::lock_guard lock(mutex_);
    named_[temporary] = final;
    return below_.moveWithoutReplacing(temporary, final);
  }
  Path real(const Path& path) {
    const std::lock_guard lock(mutex_);
    const auto found = named_.find(path);
    return found == named_.end() ? path : found->second;
  }

  std::mutex mutex_;
  std::map<Path, Path> named_;
};

// Answers reads past the cache with what was written to the file, or with what was read from it
// before.
class Remembers final : public PassThrough {
 public:
  Remembers(PlatformKit::FileSystem& below, Mutation what) : PassThrough(below), what_(what) {}

  Result<std::unique_ptr<WritableFile>> createFile(const Path& path) override {
    if (what_ != Mutation::readBackFromMemory) return below_.createFile(path);
    return wrapped<WrittenFile>(below_.createFile(path), memoryOf(path));
  }
  Result<std::unique_ptr<ReadableFile>> openForReading(const Path& path, ReadMode mode) override {
    auto opened = below_.openForReading(path, mode);
    if (mode == ReadMode::pastCache && remembers(path)) {
      return wrapped<RememberedFile>(std::move(opened), memoryOf(path));
    }
    const bool isRest = mode == ReadMode::pastCache && !memoryOf(path).empty();
    if (what_ == Mutation::cardReadOnce && (mode == ReadMode::streamed || isRest)) {
      return wrapped<FirstReading>(std::move(opened), memoryOf(path), mutex_);
    }
    return opened;
  }

 private:
  class WrittenFile final : public PassThroughWritable {
   public:
    WrittenFile(std::unique_ptr<WritableFile> below, std::string& memory)
        : PassThroughWritable(std::move(below)), memory_(memory) {}
    Result<std::size_t> write(std::span<const std::byte> bytes) override {
      auto count = below_->write(bytes);
      if (count.ok()) memory_.append(reinterpret_cast<const char*>(bytes.data()), count.value());
      return count;
    }

   private:
    std::string& memory_;
  };

  class FirstReading final : public PassThroughReadable {
   public:
    FirstReading(std::unique_ptr<ReadableFile> below, std::string& memory, std::mutex& mutex)
        : PassThroughReadable(std::move(below)), memory_(memory), mutex_(mutex) {}
    Result<std::size_t> readAt(std::span<std::byte> buffer, std::uint64_t offset) override {
      auto count = below_->readAt(buffer, offset);
      if (!count.ok() || count.value() == 0) return count;
      // Two threads read the parts of a chunk.
      const std::lock_guard lock(mutex_);
      memory_.resize(std::max<std::size_t>(memory_.size(), offset + count.value()));
      std::memcpy(memory_.data() + offset, buffer.data(), count.value());
      return count;
    }

   private:
    std::string& memory_;
    std::mutex& mutex_;
  };

  class RememberedFile final : public PassThroughReadable {
   public:
    RememberedFile(std::unique_ptr<ReadableFile> below, const std::string& memory)
        : PassThroughReadable(std::move(below)), memory_(memory) {}
    Result<std::size_t> readAt(std::span<std::byte> buffer, std::uint64_t offset) override {
      // Read all the same, so that what a test does to the reads is done.
      auto count = below_->readAt(buffer, offset);
      if (!count.ok() || offset >= memory_.size()) return std::size_t{0};
      const std::size_t length = std::min<std::size_t>(buffer.size(), memory_.size() - offset);
      std::memcpy(buffer.data(), memory_.data() + offset, length);
      return length;
    }

   private:
    const std::string& memory_;
  };

  // The first reading opens a long file once more for what is behind its first chunk.
  bool remembers(const Path& path) {
    const std::lock_guard lock(mutex_);
    const auto memory = memory_.find(path);
    return memory != memory_.end() && memory->second.size() >= std::filesystem::file_size(path);
  }
  std::string& memoryOf(const Path& path) {
    const std::lock_guard lock(mutex_);
    return memory_[path];
  }

  const Mutation what_;
  std::mutex mutex_;
  std::map<Path, std::string> memory_;
};

class ReplacingMoves final : public PassThrough {
 public:
  using PassThrough::PassThrough;
  int moveWithoutReplacing(const Path& from, const Path& to) override {
    // Asked below in a way that lets a test take the name meanwhile.
    const int error = below_.moveWithoutReplacing(from, to);
    return error == 0 ? 0 : below_.moveReplacing(from, to);
  }
};

}  // namespace

Wrap broken(Mutation mutation) {
  return [mutation](PlatformKit::FileSystem& below) -> std::unique_ptr<PlatformKit::FileSystem> {
    switch (mutation) {
      case Mutation::copiesNotFlushed:
      case Mutation::foldersNotFlushed:
      case Mutation::volumesNotFlushed:
      case Mutation::movedNotFlushed:
      case Mutation::flushErrorsLost:
        break;
      case Mutation::namedBeforeReadBack:
        return std::make_unique<NamesEarly>(below);
      case Mutation::readBackFromMemory:
      case Mutation::cardReadOnce:
        return std::make_unique<Remembers>(below, mutation);
      case Mutation::moveReplaces:
        return std::make_unique<ReplacingMoves>(below);
    }
    return std::make_unique<FlushesNothing>(below, mutation);
  };
}

}  // namespace Torture
