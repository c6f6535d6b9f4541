#include "tests/OffloadKit/OffloadFixture.h"

namespace OffloadKit {

using PlatformKit::Date;

OffloadFixture::OffloadFixture() {
  std::filesystem::create_directories(card_);
  for (int number = 1; number <= 3; ++number) {
    std::filesystem::create_directories(drive(number));
    setRoom(number, 1'000'000'000'000);
  }
}

Path OffloadFixture::drive(int number) const {
  return folder_.path() / ("drive" + std::to_string(number));
}

void OffloadFixture::setFat(int number, bool isFat) {
  PlatformKit::VolumeFacts facts = volumes_.facts(drive(number));
  facts.moveKeepsContent = !isFat;
  volumes_.lay(drive(number), facts);
}

void OffloadFixture::setRoom(int number, std::uint64_t bytes) {
  PlatformKit::VolumeFacts facts;
  facts.identifier = PlatformKit::VolumeIdentifier{1000U + static_cast<unsigned>(number)};
  facts.root = drive(number);
  facts.name = "T" + std::to_string(number);
  facts.available = bytes;
  facts.device = device(number);
  facts.moveKeepsContent = true;
  volumes_.lay(drive(number), facts);
}

void OffloadFixture::replaceFile(const Path& file) {
  const auto number = linux_.status(file).value().identity;
  std::filesystem::remove(file);
  writeFile(file, pattern(1000, 2));
  for (int i = 0; i < 50 && linux_.status(file).value().identity != number; ++i) {
    std::filesystem::rename(file, folder_.path() / ("kept" + std::to_string(i)));
    writeFile(file, pattern(1000, 2));
  }
}

void OffloadFixture::addFile(const std::string& relativePath, const std::string& content) {
  writeFile(card_ / relativePath, content);
  const Date modified(std::chrono::seconds(1'790'000'000) + std::chrono::milliseconds(250));
  ASSERT_EQ(linux_.setDates(card_ / relativePath, modified, std::nullopt), 0);
}

std::unique_ptr<PlatformKit::Folder> OffloadFixture::held(const Path& folder) {
  std::filesystem::create_directories(folder);
  return std::move(fileSystem_.openFolder(folder, PlatformKit::Mounts::refused).value());
}

OffloadPlan OffloadFixture::plan(int drives) const {
  OffloadPlan plan;
  plan.source = card_;
  plan.sourceName = "A001";
  for (int number = 1; number <= drives; ++number) plan.destinations.push_back(copies(number));
  plan.algorithm = HashKit::HashAlgorithm::xxh64;
  plan.verifySource = true;
  plan.chunkSize = kChunk;
  return plan;
}

OffloadResult OffloadFixture::run(const OffloadPlan& plan) {
  return OffloadEngine(system_, rawDeviceAccess_).run(plan, [](const OffloadProgress&) {});
}

void OffloadFixture::expectIdentical(int number) const {
  EXPECT_EQ(copiedTree(number), tree(card_));
  for (const std::string& item : tree(card_)) {
    if (item.ends_with('/')) continue;
    EXPECT_EQ(readFile(copies(number) / item), readFile(card_ / item)) << item;
    EXPECT_EQ(std::filesystem::last_write_time(copies(number) / item),
              std::filesystem::last_write_time(card_ / item))
        << item;
  }
}

std::vector<std::string> OffloadFixture::copiedTree(int number) const {
  std::vector<std::string> items = tree(copies(number));
  std::erase_if(items, [](const std::string& item) {
    return item.starts_with("ascmhl/") || item.starts_with("Offload Report ");
  });
  return items;
}

void OffloadFixture::expectNothingPending() const {
  EXPECT_EQ(fileSystem_.openFiles(), 0);
  for (int number = 1; number <= 3; ++number) {
    for (const std::string& item : tree(drive(number))) {
      EXPECT_FALSE(item.ends_with(".zmpart")) << item;
    }
  }
}

std::vector<std::string> OffloadFixture::cardState() const {
  std::vector<std::string> state;
  for (const std::string& item : tree(card_)) {
    const auto date = std::filesystem::last_write_time(card_ / item).time_since_epoch().count();
    state.push_back(item + " " + std::to_string(date) +
                    (item.ends_with('/') ? "" : " " + readFile(card_ / item)));
  }
  return state;
}

}  // namespace OffloadKit
