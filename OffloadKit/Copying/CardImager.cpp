#include "OffloadKit/Copying/CardImager.h"

#include "DeviceKit/DeviceError.h"
#include "OffloadKit/Records/FolderPreset.h"
#include "OffloadKit/Records/OffloadError.h"
#include "OffloadKit/Transfer/DurableNames.h"
#include "OffloadKit/Transfer/FileDigest.h"
#include "OffloadKit/Transfer/Links.h"
#include "OffloadKit/Transfer/PendingCopy.h"
#include "OffloadKit/Transfer/TemporaryNames.h"
#include "OffloadKit/Transfer/Transfer.h"
#include "PlatformKit/AlignedBuffer.h"
#include "PlatformKit/WorkerPool.h"
#include "TextKit/DateText.h"
#include "TextKit/Unicode.h"

#include <cerrno>

namespace OffloadKit::CardImager {
namespace {

using PlatformKit::AlignedBuffer;
using PlatformKit::Path;
using Kind = Reason::Kind;

/// Why there is no image; becomes the result's failure.
struct Failure {
  Reason reason;
};

class Imaging {
 public:
  Imaging(PlatformKit::System system, DeviceKit::ByteSource& source,
          HashKit::HashAlgorithm algorithm, std::size_t chunkSize, const Questions& ask,
          const std::function<void(double)>& progress)
      : system_(system),
        source_(source),
        algorithm_(algorithm),
        chunkSize_(chunkSize),
        ask_(ask),
        progress_(progress) {}

  /// Writes, checks and names the image. Answers its checksum; `written()` is its size.
  std::string save(const Path& folder, const Path& temporary, const Path& final) {
    checkFolder();
    if (leadsOut(system_.fileSystem, final, folder.parent_path())) {
      throw Failure{Reason(Kind::linkLeadsOut)};
    }
    check(createFolders(system_.fileSystem, folder));
    if (system_.fileSystem.status(final).ok()) {
      throw Failure{Reason(Kind::imageThere)};
    }
    auto created = PendingCopy::create(system_.fileSystem, temporary, final);
    check(created.error());
    PendingCopy& image = created.value();
    const std::string hash = copyDevice(*image.file());
    check(image.file()->flush());
    image.close();
    // Keeps the file open until it has its name, so that no other gets its identity.
    FileDigest digest(system_.fileSystem, temporary, algorithm_);
    compare(digest, hash);
    checkFolder();
    check(image.commit());
    settle(digest, folder, final);
    return hash;
  }

  [[nodiscard]] std::uint64_t written() const { return done_; }

 private:
  static void check(int error) {
    if (error != 0) throw Failure{Reason::ofDrive(error)};
  }

  void checkFolder() {
    if (!ask_.whyNot) return;
    if (auto reason = ask_.whyNot()) throw Failure{std::move(*reason)};
  }

  // What a power cut could take away under its name is not a saved image.
  void settle(FileDigest& digest, const Path& folder, const Path& final) {
    // Some file systems write a moved file's size only now; see VolumeFacts::moveKeepsContent.
    int error = digest.flush();
    for (const Path& above : {folder, folder.parent_path()}) {
      if (error == 0) error = flushNames(system_.fileSystem, above);
    }
    if (error == 0) return;
    static_cast<void>(system_.fileSystem.removeFile(final));
    throw Failure{Reason::ofDrive(error)};
  }

  // While one chunk is written and hashed, the next one is read: card and drive work at once. What
  // a read throws waits for the chunk before it, whose batch is joined on the way out.
  std::string copyDevice(PlatformKit::WritableFile& file) {
    const auto hasher = makeHasher(algorithm_);
    AlignedBuffer buffers[] = {AlignedBuffer(chunkSize_), AlignedBuffer(chunkSize_)};
    std::size_t current = 0;
    std::size_t count = readChunk(buffers[0].bytes(), 0);
    while (count > 0) {
      const std::span<const std::byte> chunk = buffers[current].bytes().first(count);
      int error = 0;
      const auto handle = [&](std::size_t job) {
        if (job == 0) error = writeBehind(file, chunk, done_, chunkSize_, source_.size());
        if (job == 1) hasher->update(chunk);
      };
      auto handling = workers_.start(2, handle);
      current = 1 - current;
      count = readChunk(buffers[current].bytes(), done_ + chunk.size());
      handling.wait();
      check(error);
      done_ += chunk.size();
      progress_(static_cast<double>(chunk.size()));
    }
    return hasher->finalize();
  }

  std::size_t readChunk(std::span<std::byte> buffer, std::uint64_t offset) {
    if (offset >= source_.size()) return 0;
    if (ask_.isCancelled()) throw OffloadError::cancelled();
    try {
      return source_.read(offset, buffer);
    } catch (const DeviceKit::DeviceError&) {
      throw Failure{Reason(Kind::cardStopped)};
    }
  }

  void compare(FileDigest& digest, const std::string& hash) {
    AlignedBuffer pieces[] = {AlignedBuffer(chunkSize_), AlignedBuffer(chunkSize_)};
    workers_.parallelFor(2, [&](std::size_t job) { digest.work(pieces[job].bytes()); });
    progress_(static_cast<double>(done_));
    const auto readBack = digest.result();
    if (!readBack.ok()) throw Failure{Reason(Kind::imageUnreadable)};
    if (readBack.value() != hash) {
      throw Failure{Reason(Kind::imageDiffers)};
    }
  }

  PlatformKit::System system_;
  DeviceKit::ByteSource& source_;
  HashKit::HashAlgorithm algorithm_;
  std::size_t chunkSize_;
  const Questions& ask_;
  const std::function<void(double)>& progress_;
  PlatformKit::WorkerPool workers_{2};
  std::uint64_t done_ = 0;
};

}  // namespace

std::string fileName(const std::string& card, PlatformKit::Date date) {
  // Leaves room for date and ending, and for what the temporary name adds, in a name of 255 bytes.
  constexpr std::size_t kLongestCard = 220;
  const std::string name = FolderPreset::clean(card.empty() ? "Card" : card);
  return std::string(TextKit::shortened(name, kLongestCard)) + "_" +
         TextKit::localDateText(date, "%Y-%m-%d_%H%M") + ".img";
}

CardImageResult write(PlatformKit::System system, DeviceKit::ByteSource& source, const Path& folder,
                      const std::string& name, HashKit::HashAlgorithm algorithm,
                      std::size_t chunkSize, const Questions& ask,
                      const std::function<void(double)>& progress) {
  const Path images = folder / CardImageRequest::folderName;
  CardImageResult result;
  result.url = images / name;
  result.relativePath = std::string(CardImageRequest::folderName) + "/" + name;
  Imaging imaging(system, source, algorithm, chunkSize, ask, progress);
  try {
    result.hash = imaging.save(images, images / TemporaryNames::of(name), result.url);
    result.size = imaging.written();
    result.outcome = CardImageResult::Outcome::verified();
  } catch (const Failure& failure) {
    result.size = source.size();
    result.outcome = CardImageResult::Outcome::failed(failure.reason);
  }
  result.unreadableBlocks = source.badReads();
  return result;
}

}  // namespace OffloadKit::CardImager
