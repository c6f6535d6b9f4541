#include "tests/Model/ModelFixture.h"

namespace ZephrimarkOffload {

ModelFixture::ModelFixture() {
  addDrive(t7_, 500'000'000'000, 2);
  addDrive(raid_, 500'000'000'000, 3);
}

PlatformKit::MountedVolume ModelFixture::cardVolume(const Path& root) {
  PlatformKit::MountedVolume volume;
  volume.root = root;
  volume.name = root.filename().native();
  volume.isRemovable = volume.isEjectable = true;
  return volume;
}

PlatformKit::MountedVolume ModelFixture::driveVolume(const Path& root) {
  PlatformKit::MountedVolume volume;
  volume.root = root;
  volume.name = root.filename().native();
  volume.isEjectable = false;
  return volume;
}

void ModelFixture::addDrive(const Path& root, std::uint64_t room, std::uint64_t identifier) {
  disks_->change([&](FakeDiskQueries& disks) {
    const PlatformKit::VolumeIdentifier volume{identifier};
    disks.volumes_.push_back(driveVolume(root));
    disks.volumeAnswers_[root] = {PlatformKit::VolumeSpace{2 * room, room}, volume};
    disks.destinations_[root] = {true, false, root.filename().native(), room, volume, root};
  });
}

void ModelFixture::addCard(const Path& root, std::size_t files, std::uint64_t bytes) {
  disks_->change([&](FakeDiskQueries& disks) {
    const PlatformKit::VolumeSpace space{128'000'000'000, 128'000'000'000 - bytes};
    disks.volumes_.push_back(cardVolume(root));
    disks.volumeAnswers_[root] = {space, PlatformKit::VolumeIdentifier{9}};
    disks.sources_[root] = {root.filename().native(), "Canon", true, space,
                            DeviceKit::WholeDisk{"sdc", "/dev/sdc", 128'000'000'000}};
    disks.counts_[root] = {files, bytes};
  });
}

OffloadModel& ModelFixture::makeModel() {
  model_.reset();
  settings_ = std::make_unique<Settings>(settingsPath());
  watcher_ = std::make_unique<PlatformKit::Testing::FakeVolumeWatcher>();
  model_ = std::make_unique<OffloadModel>(
      OffloadModel::Services{disks_, *watcher_, desktop_, *settings_, clock_, makeRunner_});
  return *model_;
}

OffloadModel& ModelFixture::makeReadyModel() {
  OffloadModel& model = makeModel();
  model.setup().setSource(card_);
  model.setup().addDestination(t7_);
  model.setup().addDestination(raid_);
  EXPECT_TRUE(waitUntil([&] { return !model.blocker(); })) << model.blocker().value_or("");
  return model;
}

}  // namespace ZephrimarkOffload
