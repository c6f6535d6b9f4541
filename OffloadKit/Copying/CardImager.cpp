#include "OffloadKit/Copying/CardImager.h"

#include "DeviceKit/DeviceError.h"
#include "OffloadKit/Records/FolderPreset.h"
#include "OffloadKit/Records/OffloadError.h"
#include "OffloadKit/Transfer/CopySteps.h"
#include "OffloadKit/Transfer/DurableNames.h"
#include "OffloadKit/Transfer/TemporaryNames.h"
#include "OffloadKit/Transfer/Transfer.h"
#include "TextKit/DateText.h"
#include "TextKit/Unicode.h"

#include <cerrno>

namespace OffloadKit::CardImager {
namespace {

using PlatformKit::Folder;
using PlatformKit::Path;
using Kind = Reason::Kind;

/// Why there is no image; becomes the result's failure.
struct Failure {
  Reason reason;
};

void check(int error) {
  if (error == ELOOP || error == EXDEV) throw Failure{Reason(Kind::linkLeadsOut)};
  if (error != 0) throw Failure{Reason::ofDrive(error)};
}

/// A device on its way into one file: a chunk for each round.
class Device final : public Load {
 public:
  Device(DeviceKit::ByteSource& source, PlatformKit::WritableFile& file, std::size_t chunkSize,
         HashKit::HashAlgorithm algorithm, const Caller& caller)
      : source_(source),
        file_(file),
        chunkSize_(chunkSize),
        hasher_(makeHasher(algorithm)),
        caller_(caller) {}

  [[nodiscard]] std::uint64_t written() const { return written_; }
  [[nodiscard]] std::string hash() const { return hasher_->finalize(); }

  std::size_t layOut(std::size_t round, std::span<std::byte> memory) override {
    const std::uint64_t offset = round * chunkSize_;
    if (offset >= source_.size()) return 0;
    if (caller_.isCancelled()) throw OffloadError::cancelled();
    chunks_[round % 2] = {offset, memory, 0, false};
    return 1;
  }
  void read(std::size_t round, std::size_t /*part*/) override {
    Chunk& chunk = chunks_[round % 2];
    try {
      chunk.length = source_.read(chunk.offset, chunk.memory);
    } catch (const DeviceKit::DeviceError&) {
      chunk.hasFailed = true;
    }
  }
  void accept(std::size_t round) override {
    if (chunks_[round % 2].hasFailed) throw Failure{Reason(Kind::cardStopped)};
  }
  [[nodiscard]] bool isWriting() const override { return true; }
  void write(std::size_t round, std::size_t lane) override {
    const Chunk& chunk = chunks_[round % 2];
    if (lane != 0) return;
    error_ = writeBehind(file_, chunk.content(), chunk.offset, chunkSize_, source_.size());
  }
  void meanwhile(std::size_t round) override { hasher_->update(chunks_[round % 2].content()); }
  void done(std::size_t round) override {
    check(error_);
    written_ += chunks_[round % 2].length;
    caller_.progress(static_cast<double>(chunks_[round % 2].length));
  }

 private:
  struct Chunk {
    std::uint64_t offset = 0;
    std::span<std::byte> memory;
    std::size_t length = 0;
    bool hasFailed = false;
    [[nodiscard]] std::span<const std::byte> content() const { return memory.first(length); }
  };

  DeviceKit::ByteSource& source_;
  PlatformKit::WritableFile& file_;
  const std::size_t chunkSize_;
  const std::unique_ptr<HashKit::StreamingHasher> hasher_;
  const Caller& caller_;
  Chunk chunks_[2];
  int error_ = 0;
  std::uint64_t written_ = 0;
};

class Imaging {
 public:
  Imaging(DeviceKit::ByteSource& source, Folder& folder, HashKit::HashAlgorithm algorithm,
          Pipeline& pipeline, const Caller& caller)
      : source_(source),
        folder_(folder),
        algorithm_(algorithm),
        pipeline_(pipeline),
        caller_(caller) {}

  /// Writes, checks and names the image.
  void save(const Path& final, CardImageResult& result) {
    checkFolder();
    const Path images = final.parent_path();
    check(createFolders(folder_, images));
    const auto there = folder_.status(final);
    if (there.ok()) throw Failure{Reason(Kind::imageThere)};
    auto created = WritableCopy::create(
        folder_, images / TemporaryNames::of(final.filename().native()), final);
    check(created.error());
    Device device(source_, created.value().file(), pipeline_.chunkSize(), algorithm_, caller_);
    pipeline_.prime(device);
    pipeline_.transfer(device);
    auto flushed = std::move(created.value()).flush();
    check(flushed.error());
    const std::string hash = device.hash();
    const Path temporary = flushed.value().temporary();
    ProvenCopy proven = prove(std::move(flushed.value()), device.written(), hash);
    checkFolder();
    check(proven.giveFinalName());
    makeDurable(proven, temporary);
    result.hash = hash;
    result.size = device.written();
  }

 private:
  void checkFolder() {
    if (!caller_.whyNot) return;
    if (auto reason = caller_.whyNot()) throw Failure{std::move(*reason)};
  }

  ProvenCopy prove(FlushedCopy copy, std::uint64_t size, const std::string& hash) {
    FileDigest& digest = copy.readBack(algorithm_, size);
    const ReadBackLane lane{{&digest}};
    pipeline_.readBack({&lane, 1}, size);
    caller_.progress(static_cast<double>(size));
    if (!digest.result().ok()) throw Failure{Reason(Kind::imageUnreadable)};
    auto proven = std::move(copy).prove(hash);
    if (!proven) throw Failure{Reason(Kind::imageDiffers)};
    return std::move(*proven);
  }

  // What a power cut could take away under its name is not a saved image.
  void makeDurable(ProvenCopy& image, const Path& hidden) {
    // Some file systems write a moved file's size only now; see VolumeFacts::moveKeepsContent.
    int error = image.flushAgain();
    for (const Path& above : {hidden.parent_path(), Path()}) {
      if (error == 0) error = flushNames(folder_, above);
    }
    if (error == 0) error = checkTakesChanges(folder_, hidden);
    if (error == 0) return;
    static_cast<void>(folder_.removeFile(image.final()));
    throw Failure{Reason::ofDrive(error)};
  }

  DeviceKit::ByteSource& source_;
  Folder& folder_;
  HashKit::HashAlgorithm algorithm_;
  Pipeline& pipeline_;
  const Caller& caller_;
};

}  // namespace

std::string fileName(const std::string& card, PlatformKit::Date date) {
  // Leaves room for date and ending, and for what the temporary name adds, in a name of 255 bytes.
  constexpr std::size_t kLongestCard = 220;
  const std::string name = FolderPreset::clean(card.empty() ? "Card" : card);
  return std::string(TextKit::shortened(name, kLongestCard)) + "_" +
         TextKit::localDateText(date, "%Y-%m-%d_%H%M") + ".img";
}

CardImageResult write(DeviceKit::ByteSource& source, Folder& folder, const Path& path,
                      const std::string& name, HashKit::HashAlgorithm algorithm, Pipeline& pipeline,
                      const Caller& caller) {
  CardImageResult result;
  result.relativePath = std::string(CardImageRequest::folderName) + "/" + name;
  result.url = path / result.relativePath;
  try {
    Imaging(source, folder, algorithm, pipeline, caller).save(result.relativePath, result);
    result.outcome = CardImageResult::Outcome::verified();
  } catch (const Failure& failure) {
    result.size = source.size();
    result.outcome = CardImageResult::Outcome::failed(failure.reason);
  }
  result.unreadableBlocks = source.badReads();
  return result;
}

}  // namespace OffloadKit::CardImager
