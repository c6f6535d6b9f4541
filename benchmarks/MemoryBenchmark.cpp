// Peak memory of a run of many small files to two drives. Budget: (destinations + 2) x chunk size
// + 64 MiB for 20,000 files.
#include "DeviceKit/RawDeviceAccess.h"
#include "OffloadKit/OffloadEngine.h"
#include "PlatformKit/Linux/LinuxFileSystem.h"
#include "PlatformKit/Linux/LinuxRawDevices.h"
#include "PlatformKit/Linux/LinuxVolumes.h"
#include "PlatformKit/Testing/TempFolder.h"

#include <cstdio>
#include <cstdlib>

#include <sys/resource.h>

int main(int argc, char** argv) {
  const int files = argc > 1 ? std::atoi(argv[1]) : 20'000;
  const PlatformKit::Testing::TempFolder folder;
  const auto card = folder.path() / "card";
  for (int i = 0; i < files; ++i) {
    char name[64];
    std::snprintf(name, sizeof name, "DCIM/%03dCANON/IMG_%05d.JPG", 100 + i / 1000, i);
    PlatformKit::Testing::writeFile(card / name, PlatformKit::Testing::pattern(10'000));
  }
  // One large file, so that every buffer is touched.
  PlatformKit::Testing::writeFile(card / "MVI.MP4", std::string(40'000'000, 'x'));

  OffloadKit::OffloadPlan plan;
  plan.source = card;
  plan.sourceName = "card";
  plan.destinations = {folder.path() / "a", folder.path() / "b"};
  plan.chunkSize = OffloadKit::kUsualChunkSize;
  PlatformKit::LinuxFileSystem fileSystem;
  PlatformKit::LinuxVolumes volumes;
  const PlatformKit::SystemClock clock;
  PlatformKit::LinuxRawDevices devices;
  const DeviceKit::RawDeviceAccess noCardImage(devices, {});
  OffloadKit::OffloadEngine engine({fileSystem, volumes, clock}, noCardImage);
  rusage before{};
  getrusage(RUSAGE_SELF, &before);
  const auto result = engine.run(plan, [](const OffloadKit::OffloadProgress&) {});
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);

  const double seconds = std::chrono::duration<double>(result.finished - result.started).count();
  const double peak = static_cast<double>(usage.ru_maxrss) / 1024;
  const double budget =
      static_cast<double>((plan.destinations.size() + 2) * plan.chunkSize) / 1048576 + 64;
  std::printf("offload of %d files to 2 drives: %s, %.1f s, peak %.0f MiB (budget %.0f MiB)\n",
              files, result.allVerified() ? "verified" : "NOT VERIFIED", seconds, peak, budget);
  return result.allVerified() && peak <= budget ? 0 : 1;
}
