// The model on the volumes of this machine: mounts come and go while it looks.

#include "Composition/Machine.h"
#include "ZephrimarkOffload/Model/SystemDiskQueries.h"
#include "tests/Model/ModelFixture.h"
#include "tests/PlatformKit/MountedImage.h"

#include <algorithm>

namespace ZephrimarkOffload {
namespace {

struct RealDisks {
  Composition::Machine machine;
  SystemDiskQueries queries{machine.platform(), machine.mountedVolumes(), machine.disks(), nullptr};
};

TEST(RealVolumesTests, AMountedDriveAppearsIsReadAndDisappears) {
  if (!PlatformKit::Testing::leaveTheMountsOfOthers()) {
    GTEST_SKIP() << "Mounting needs root.";
  }
  const PlatformKit::Testing::TempFolder folder;
  FakeDesktop desktop;
  Settings settings(QString::fromStdString((folder.path() / "settings.ini").native()));
  const auto watcher = Composition::Machine::makeVolumeWatcher();
  const auto disks = std::make_shared<RealDisks>();
  OffloadModel model({std::shared_ptr<DiskQueries>(disks, &disks->queries), *watcher, desktop,
                      settings, disks->machine.platform().clock, nullptr});
  const auto find = [&](const Path& root) {
    const auto& drives = model.setup().drives();
    return std::find_if(drives.begin(), drives.end(),
                        [&](const auto& drive) { return drive.url == root; });
  };

  PlatformKit::Testing::MountedImage image(folder.path());
  if (!image.isMounted()) GTEST_SKIP() << "No loop devices here.";
  const Path root = image.point();
  ASSERT_TRUE(waitUntil([&] { return find(root) != model.setup().drives().end(); }));
  EXPECT_GT(find(root)->capacity, 4'000'000);
  EXPECT_GT(find(root)->available, 0);
  // A disk image is no card.
  EXPECT_TRUE(std::none_of(model.setup().cards().begin(), model.setup().cards().end(),
                           [&](const auto& card) { return card.url == root; }));

  model.setup().addDestination(root / "Footage");
  model.setup().setSource(root);
  ASSERT_TRUE(waitUntil([&] { return model.setup().source()->facts.isVolumeRoot; }));
  ASSERT_TRUE(waitUntil([&] { return model.setup().destinationFacts(0).has_value(); }));
  EXPECT_FALSE(model.setup().destinationFacts(0)->isInternal);
  EXPECT_EQ(model.setup().destinationFacts(0)->volumeRoot, root);
  EXPECT_EQ(model.setup().source()->facts.disk->size, PlatformKit::Testing::MountedImage::kSize);

  image.unmount();
  std::filesystem::remove(root);
  ASSERT_TRUE(waitUntil([&] { return find(root) == model.setup().drives().end(); }));
  EXPECT_TRUE(waitUntil([&] { return !model.setup().hasSource(); }));
}

}  // namespace
}  // namespace ZephrimarkOffload
