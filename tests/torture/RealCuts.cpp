#include "PlatformKit/Posix/UniqueFd.h"
#include "PlatformKit/Testing/FaultyFileSystem.h"
#include "tests/PlatformKit/MountedImage.h"
#include "tests/torture/Campaign.h"

#include <algorithm>
#include <thread>

#include <fcntl.h>
#include <linux/types.h>
#include <sys/ioctl.h>

namespace Torture {
namespace {

using PlatformKit::Testing::CallInfo;
using PlatformKit::Testing::FaultyFileSystem;
using PlatformKit::Testing::Intervention;
using PlatformKit::Testing::succeeds;

// The kernel's own imitation of a power cut: from now on nothing reaches the drive, not even the
// journal. The request and its flag are those of every file system that has it (linux/fs.h names
// them only since 6.18).
bool cutPowerOf(const Path& mountPoint) {
  constexpr unsigned long kShutDown = _IOR('X', 125, __u32);
  __u32 withoutWritingTheJournal = 2;
  const PlatformKit::UniqueFd fd(::open(mountPoint.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  return fd.valid() && ioctl(fd.get(), kShutDown, &withoutWritingTheJournal) == 0;
}

// Drive 0 is a real ext4, made anew for every cut.
class RealDrive {
 public:
  explicit RealDrive(const Bench& bench) : bench_(bench) {
    PlatformKit::Testing::writeFile(image(), "");
    std::filesystem::resize_file(image(), 16U << 20U);
    usable_ = succeeds("mkfs.ext4 -q -F '" + image().native() + "'") && mount();
    if (!usable_) return;
    for (const auto& [path, item] : bench.drivesBefore()) {
      if (!path.starts_with("drive0/")) continue;
      if (path.ends_with('/')) {
        std::filesystem::create_directories(bench.drives() / path);
      } else {
        writeItem(bench.drives() / path, item);
      }
    }
    usable_ = unmount();
    std::filesystem::copy_file(image(), fresh());
  }
  ~RealDrive() { static_cast<void>(unmount()); }  // nothing is left to lose
  RealDrive(const RealDrive&) = delete;
  RealDrive& operator=(const RealDrive&) = delete;

  [[nodiscard]] bool usable() const { return usable_; }
  [[nodiscard]] Path point() const { return bench_.drives() / "drive0"; }

  // The drive and the other one as before everything.
  bool reset() {
    static_cast<void>(unmount());  // it is not mounted the first time
    bench_.reset();
    std::filesystem::copy_file(fresh(), image(), std::filesystem::copy_options::overwrite_existing);
    return mount();
  }
  bool mount() const {
    return succeeds("mount -o loop '" + image().native() + "' '" + point().native() + "'");
  }
  [[nodiscard]] bool unmount() const { return umount2(point().c_str(), 0) == 0; }

 private:
  [[nodiscard]] Path image() const { return folder_.path() / "drive.img"; }
  [[nodiscard]] Path fresh() const { return folder_.path() / "fresh.img"; }

  const Bench& bench_;
  PlatformKit::Testing::TempFolder folder_;
  bool usable_ = false;
};

class RealCutRun {
 public:
  RealCutRun(const Bench& bench, RealDrive& drive) : bench_(bench), drive_(drive) {}

  // The calls that a whole run makes.
  std::size_t calls() {
    std::size_t calls = 0;
    drive_.reset();
    runWith([&calls](const CallInfo&) {
      ++calls;
      return Intervention{};
    });
    return calls;
  }

  // Cuts the power before the call, or at the end where there is no such call any more.
  Violations cutAt(std::size_t at) {
    Violations found;
    if (!drive_.reset()) return {"the drive cannot be mounted"};
    bool cut = false;
    std::size_t calls = 0;
    const auto result = runWith([&](const CallInfo&) {
      if (calls++ == at) cut = cutPowerOf(drive_.point());
      return Intervention{};
    });
    if (!cut && !cutPowerOf(drive_.point())) found.emplace_back("the power cannot be cut");
    if (!drive_.unmount() || !drive_.mount()) return {"the drive cannot be mounted again"};
    const Violations now = bench_.violationsNow();
    found.insert(found.end(), now.begin(), now.end());
    if (result) {
      const Violations lost = bench_.lostOf(*result);
      found.insert(found.end(), lost.begin(), lost.end());
    }
    const Violations later = bench_.violationsOf(bench_.rerun());
    found.insert(found.end(), later.begin(), later.end());
    return found;
  }

 private:
  std::optional<OffloadKit::OffloadResult> runWith(const FaultyFileSystem::Script& script) {
    FaultyFileSystem faulty(linux_);
    faulty.setScript(script);
    try {
      return bench_.run(faulty, 1);
    } catch (const OffloadKit::OffloadError&) {
      return std::nullopt;
    }
  }

  const Bench& bench_;
  RealDrive& drive_;
  PlatformKit::LinuxFileSystem linux_;
};

}  // namespace

std::optional<Tally> cutRealPower(const Variant& variant, std::size_t cuts) {
  std::optional<Tally> tally;
  // The mounts belong to a thread of its own and go with it.
  std::thread([&] {
    if (!PlatformKit::Testing::leaveTheMountsOfOthers()) return;
    const auto start = std::chrono::steady_clock::now();
    const Bench bench(variant);
    RealDrive drive(bench);
    if (!drive.usable()) return;
    tally.emplace().name = std::string("power cut of ext4, ") + variant.name;
    RealCutRun run(bench, drive);
    const std::size_t calls = run.calls();
    cuts = std::min(cuts, calls);
    for (std::size_t i = 0; i <= cuts; ++i) {
      const std::size_t at = i * calls / cuts;
      ++tally->faults;
      for (const std::string& violation : run.cutAt(at)) {
        tally->violations.push_back("cut before call " + std::to_string(at) + ": " + violation);
      }
    }
    tally->took = std::chrono::steady_clock::now() - start;
  }).join();
  return tally;
}

}  // namespace Torture
