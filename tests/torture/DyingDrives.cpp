#include "tests/torture/Campaign.h"
#include "tests/torture/DiskModel.h"

#include <algorithm>
#include <atomic>
#include <cerrno>

namespace Torture {
namespace {

/// What the kernel makes of changes on a drive that is not there any more.
enum class Death {
  silent,  ///< as of a pulled FAT or exFAT drive: it takes them, and only flushes fail
  /// As of ext4 whose journal failed: it takes none, but says yes to the flush of folders.
  refusing,
  ///< and of the volume, for which there is nothing left to do
};

/// One drive of all that a recorder sees dies before one of its calls.
class DyingDrive final : public PassThrough {
 public:
  /// `cached`: what the recorder lies on, for what reaches the memory only.
  DyingDrive(PlatformKit::FileSystem& recorder, PlatformKit::FileSystem& cached, Path drive,
             Death death, std::size_t dieAt)
      : PassThrough(recorder),
        cached_(cached),
        drive_(std::move(drive)),
        death_(death),
        dieAt_(dieAt) {}

  [[nodiscard]] std::size_t calls() const { return calls_; }

  Result<std::unique_ptr<PlatformKit::WritableFile>> createFile(const Path& path) override {
    if (!isDead(path)) return wrappedForWriting(below_.createFile(path), path);
    if (death_ == Death::refusing) return PlatformKit::ErrorNumber{EIO};
    return wrappedForWriting(cached_.createFile(path), path);
  }
  Result<std::unique_ptr<PlatformKit::ReadableFile>> openForReading(
      const Path& path, PlatformKit::ReadMode mode) override {
    if (isDead(path)) return PlatformKit::ErrorNumber{EIO};
    auto opened = below_.openForReading(path, mode);
    if (!opened.ok()) return opened;
    return std::unique_ptr<PlatformKit::ReadableFile>(
        std::make_unique<Reading>(std::move(opened.value()), *this, path));
  }
  int createFolder(const Path& path) override {
    return change(path, [&](PlatformKit::FileSystem& to) { return to.createFolder(path); });
  }
  int moveWithoutReplacing(const Path& from, const Path& to) override {
    return change(from,
                  [&](PlatformKit::FileSystem& on) { return on.moveWithoutReplacing(from, to); });
  }
  int moveReplacing(const Path& from, const Path& to) override {
    return change(from, [&](PlatformKit::FileSystem& on) { return on.moveReplacing(from, to); });
  }
  int removeFile(const Path& path) override {
    return change(path, [&](PlatformKit::FileSystem& on) { return on.removeFile(path); });
  }
  int setDates(const Path& path, PlatformKit::Date modified,
               std::optional<PlatformKit::Date> created) override {
    return change(
        path, [&](PlatformKit::FileSystem& on) { return on.setDates(path, modified, created); });
  }
  int flushFolder(const Path& folder) override {
    if (!isDead(folder)) return below_.flushFolder(folder);
    return death_ == Death::refusing ? 0 : EIO;
  }
  int flushVolume(const Path& folder) override {
    if (!isDead(folder)) return below_.flushVolume(folder);
    return death_ == Death::refusing ? 0 : EIO;
  }

 private:
  class Writing final : public PassThroughWritable {
   public:
    Writing(std::unique_ptr<PlatformKit::WritableFile> below, DyingDrive& drive, Path path)
        : PassThroughWritable(std::move(below)), drive_(drive), path_(std::move(path)) {}
    PlatformKit::Result<std::size_t> write(std::span<const std::byte> bytes) override {
      if (!drive_.isDead(path_)) return below_->write(bytes);
      if (drive_.death_ == Death::refusing) return PlatformKit::ErrorNumber{EIO};
      return bytes.size();
    }
    int flush() override { return drive_.isDead(path_) ? EIO : below_->flush(); }

   private:
    DyingDrive& drive_;
    const Path path_;
  };
  class Reading final : public PassThroughReadable {
   public:
    Reading(std::unique_ptr<PlatformKit::ReadableFile> below, DyingDrive& drive, Path path)
        : PassThroughReadable(std::move(below)), drive_(drive), path_(std::move(path)) {}
    PlatformKit::Result<std::size_t> readAt(std::span<std::byte> buffer,
                                            std::uint64_t offset) override {
      if (drive_.isDead(path_)) return PlatformKit::ErrorNumber{EIO};
      return below_->readAt(buffer, offset);
    }
    int flush() override { return drive_.isDead(path_) ? EIO : below_->flush(); }

   private:
    DyingDrive& drive_;
    const Path path_;
  };

  // Counts the call, too.
  bool isDead(const Path& path) {
    return path.native().starts_with(drive_.native()) && calls_++ >= dieAt_;
  }
  template <class Change>
  int change(const Path& path, const Change& make) {
    if (!isDead(path)) return make(below_);
    return death_ == Death::refusing ? EIO : make(cached_);
  }
  Result<std::unique_ptr<PlatformKit::WritableFile>> wrappedForWriting(
      Result<std::unique_ptr<PlatformKit::WritableFile>> created, const Path& path) {
    if (!created.ok()) return created;
    return std::unique_ptr<PlatformKit::WritableFile>(
        std::make_unique<Writing>(std::move(created.value()), *this, path));
  }

  PlatformKit::FileSystem& cached_;
  const Path drive_;
  const Death death_;
  const std::size_t dieAt_;
  std::atomic<std::size_t> calls_ = 0;
};

class DyingRun {
 public:
  DyingRun(const Variant& variant, const Wrap& wrap)
      : bench_(variant), variant_(variant), wrap_(wrap) {}

  // The calls on drive 0 that a whole run makes.
  std::size_t calls() {
    bench_.reset();
    Recorder recorder(linux_, bench_.drives());
    DyingDrive drive(recorder, linux_, drive0(), Death::silent, ~std::size_t{0});
    bench_.run(drive, 1);
    return drive.calls();
  }

  Violations dieAt(std::size_t at, Death death, Names names, std::minstd_rand& random) {
    bench_.reset();
    Recorder recorder(linux_, bench_.drives());
    DyingDrive drive(recorder, linux_, drive0(), death, at);
    const auto result = run(drive);

    DiskModel model(bench_.drivesBefore(), {}, variant_.fat);
    for (const Step& step : recorder.steps()) model.apply(step);
    model.apply({Step::Kind::flushVolume, "drive1"});
    // Nobody can keep FAT from losing what was just being named.
    if (model.withoutSize() > 0) return {};
    restore(bench_.drives(), model.afterCut(names, random));
    Violations found = result ? bench_.lostOf(*result) : Violations{};
    const Violations later = bench_.violationsOf(bench_.rerun());
    found.insert(found.end(), later.begin(), later.end());
    return found;
  }

 private:
  // None when it died before anything was copied.
  std::optional<OffloadKit::OffloadResult> run(DyingDrive& drive) {
    try {
      return wrap_ ? bench_.run(*wrap_(drive), 1) : bench_.run(drive, 1);
    } catch (const OffloadKit::OffloadError&) {
      return std::nullopt;
    }
  }
  [[nodiscard]] Path drive0() const { return bench_.drives() / "drive0"; }

  PlatformKit::LinuxFileSystem linux_;
  const Bench bench_;
  const Variant variant_;
  const Wrap& wrap_;
};

}  // namespace

Tally killDrive(const Variant& variant, std::size_t points, std::uint64_t seed, const Wrap& wrap) {
  const auto start = std::chrono::steady_clock::now();
  Tally tally;
  tally.name = std::string("a drive that comes back, ") + variant.name;
  DyingRun run(variant, wrap);
  std::minstd_rand random(static_cast<std::minstd_rand::result_type>(seed));
  const std::size_t calls = run.calls();
  points = std::min(points, calls);
  for (std::size_t i = 0; i < points; ++i) {
    const std::size_t at = i * calls / points;
    for (const Death death : {Death::silent, Death::refusing}) {
      for (const Names names : {Names::lost, Names::some}) {
        ++tally.faults;
        for (const std::string& violation : run.dieAt(at, death, names, random)) {
          tally.violations.push_back("died before call " + std::to_string(at) + ": " + violation);
        }
      }
    }
  }
  tally.took = std::chrono::steady_clock::now() - start;
  return tally;
}

}  // namespace Torture
