#include "PlatformKit/Testing/FaultyFileSystem.h"
#include "tests/endtoend/Program.h"
#include "tests/torture/Campaign.h"

#include <algorithm>
#include <csignal>
#include <exception>
#include <random>

#include <sys/wait.h>
#include <unistd.h>

namespace Torture {
namespace {

using PlatformKit::Testing::Call;
using PlatformKit::Testing::CallInfo;
using PlatformKit::Testing::FaultyFileSystem;
using PlatformKit::Testing::Intervention;

struct KillPoint {
  std::size_t call = 0;
  bool torn = false;  ///< the call, a write, gets some of its bytes out first
};

class KilledRuns {
 public:
  KilledRuns(const Variant& variant, bool spoiling, const Wrap& wrap)
      : bench_(variant), chunk_(variant.chunk), spoiling_(spoiling), wrap_(wrap) {}

  // Every point of a whole run, in order.
  std::vector<KillPoint> points() {
    std::vector<KillPoint> points;
    runWith([&](const CallInfo& info) {
      points.push_back({points.size(), false});
      if (info.call == Call::write) writes_.push_back(points.size() - 1);
      return Intervention{};
    });
    for (const std::size_t call : writes_) points.push_back({call, true});
    std::stable_sort(points.begin(), points.end(),
                     [](const KillPoint& a, const KillPoint& b) { return a.call < b.call; });
    return points;
  }

  // Whether the run was killed there, rather than having come to its end.
  bool killAt(KillPoint point) {
    bench_.reset();
    const pid_t child = fork();
    if (child == 0) {
      try {
        runWith(killer(point));
      } catch (const std::exception&) {
        _exit(1);
      }
      _exit(0);
    }
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFSIGNALED(status);
  }

  Violations violations() {
    Violations found = bench_.violationsNow();
    const Violations later = bench_.violationsOf(bench_.rerun());
    found.insert(found.end(), later.begin(), later.end());
    return found;
  }

 private:
  void runWith(const FaultyFileSystem::Script& script) {
    PlatformKit::LinuxFileSystem linux;
    FaultyFileSystem faulty(linux);
    faulty.setScript([this, script](const CallInfo& info) {
      Intervention intervention = script(info);
      if (spoiling_ && info.call == Call::write && info.offset == chunk_ &&
          info.path == bench_.drives() / Bench::copies(1) / "DCIM/100/.several chunks.mov.zmpart") {
        intervention.flipBit = true;
        intervention.bit = 12'345;
      }
      return intervention;
    });
    if (wrap_) {
      bench_.run(*wrap_(faulty), 1);
    } else {
      bench_.run(faulty, 1);
    }
  }

  FaultyFileSystem::Script killer(KillPoint point) const {
    // Of a write that is to be torn a part is let through; the engine then asks to write the rest,
    // and only then is that part sure to have reached the file.
    constexpr std::size_t kPart = 50;  // bytes, less than most files
    return [point, calls = std::size_t{0}, torn = Path()](const CallInfo& info) mutable {
      const bool isCall = calls++ == point.call;
      if ((isCall && !point.torn) || (!torn.empty() && info.path == torn)) kill(getpid(), SIGKILL);
      Intervention intervention;
      if (isCall && info.call == Call::write) {
        torn = info.path;
        intervention.limit = info.offset == 0 ? kPart : kPart * kPart;
      }
      return intervention;
    };
  }

  const Bench bench_;
  const std::size_t chunk_;
  const bool spoiling_;
  const Wrap& wrap_;
  std::vector<std::size_t> writes_;
};

// What lies on the drives, while a program works there.
std::uintmax_t bytesBelow(const Path& folder) {
  std::uintmax_t bytes = 0;
  std::error_code gone;  // ignored on purpose: items are renamed and removed meanwhile
  for (std::filesystem::recursive_directory_iterator it(folder, gone), end; !gone && it != end;
       it.increment(gone)) {
    std::error_code unreadable;
    const auto size = it->file_size(unreadable);
    if (!unreadable) bytes += size;
  }
  return bytes;
}

}  // namespace

Tally killRuns(const Variant& variant, std::size_t points, bool spoiling, const Wrap& wrap) {
  const auto start = std::chrono::steady_clock::now();
  Tally tally;
  tally.name = std::string("kill -9, ") + variant.name;
  KilledRuns runs(variant, spoiling, wrap);
  const std::vector<KillPoint> all = runs.points();
  points = std::min(points, all.size());
  for (std::size_t i = 0; i < points; ++i) {
    const KillPoint point = all[i * all.size() / points];
    // The threads of a run take turns as they like, so a late call may not come.
    if (runs.killAt(point)) ++tally.faults;
    for (const std::string& violation : runs.violations()) {
      tally.violations.push_back("killed at call " + std::to_string(point.call) +
                                 (point.torn ? " half way: " : ": ") + violation);
    }
  }
  tally.took = std::chrono::steady_clock::now() - start;
  return tally;
}

Tally killProgram(std::size_t kills, std::uint64_t seed) {
  const auto start = std::chrono::steady_clock::now();
  Tally tally;
  tally.name = "kill -9 of the program";
  const Bench bench({"", std::size_t{1} << 18});
  std::uintmax_t bytes = 0;
  for (const auto& [path, item] : bench.cardBefore()) bytes += item.bytes.size();
  std::minstd_rand random(static_cast<std::minstd_rand::result_type>(seed));
  for (std::size_t i = 0; i < kills; ++i) {
    bench.reset();
    const std::uintmax_t when = random() % bytes;
    EndToEnd::Program program(
        {ZEPHRIMARK_PROGRAM, "offload", bench.card(), bench.drives() / "drive0",
         bench.drives() / "drive1", "--quiet", "--template", "2026-10-07/A001"},
        {bench.drives(), {"LANG=C.UTF-8"}});
    while (program.isRunning() && bytesBelow(bench.drives()) < when) {
    }
    if (program.isRunning()) program.send(SIGKILL);
    if (program.waitForEnd().status == -SIGKILL) ++tally.faults;
    Violations found = bench.violationsNow();
    const Violations later = bench.violationsOf(bench.rerun());
    found.insert(found.end(), later.begin(), later.end());
    for (const std::string& violation : found) {
      tally.violations.push_back("killed at " + std::to_string(when) + " bytes: " + violation);
    }
  }
  tally.took = std::chrono::steady_clock::now() - start;
  return tally;
}

}  // namespace Torture
