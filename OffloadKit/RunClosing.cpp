#include "OffloadKit/RunClosing.h"

#include "DeviceKit/DeviceError.h"
#include "OffloadKit/CardImager.h"
#include "OffloadKit/ErrorSentences.h"
#include "OffloadKit/MHL.h"
#include "OffloadKit/OffloadError.h"
#include "OffloadKit/OffloadReport.h"

#include <cerrno>

namespace OffloadKit {
namespace {

// A record that cannot be written must not spoil a verified offload; the result shows it missing.
template <class Write>
void addUnlessItFails(std::vector<PlatformKit::Path>& list, Write write) {
  try {
    list.push_back(write());
  } catch (const std::exception&) {
    return;
  }
}

// Where such a drive was mounted, a folder of the computer's own disk comes to light.
bool isDisconnected(const OffloadResult& result, std::size_t destination) {
  const auto error = result.destinationErrors.find(destination);
  return error != result.destinationErrors.end() && error->second == describe(ENODEV);
}

}  // namespace

void RunClosing::openCardDevice() {
  if (!plan_.cardImage) return;
  const std::string& path = plan_.cardImage->devicePath;
  try {
    card_ = std::make_unique<DeviceKit::BlockDeviceSource>(rawDevices_.openReadOnly(path), path);
  } catch (const DeviceKit::DeviceError& error) {
    throw OffloadError::cardImageUnavailable(error.errorDescription());
  }
}

std::uint64_t RunClosing::imageWork() const {
  return card_ ? 2 * card_->size() : 0;
}

std::optional<CardImageResult> RunClosing::writeCardImage(
    PlatformKit::Date started, const std::function<bool()>& isCancelled,
    const std::function<void(const std::string&, double)>& progress) {
  if (!card_ || plan_.cardImage->destinationIndex >= plan_.destinations.size()) {
    return std::nullopt;
  }
  const std::string name = CardImager::fileName(plan_.sourceName, started);
  return CardImager::write(system_, *card_, plan_.destinations[plan_.cardImage->destinationIndex],
                           name, plan_.algorithm, plan_.chunkSize, isCancelled,
                           [&](double bytes) { progress(name, bytes); });
}

void RunClosing::writeRecords(OffloadResult& result) const {
  for (std::size_t i = 0; i < plan_.destinations.size(); ++i) {
    if (result.verifiedCount(i) == 0 || isDisconnected(result, i)) continue;
    addUnlessItFails(result.reports, [&] { return OffloadReport::write(system_, result, i); });
    addUnlessItFails(result.mhlFiles, [&] { return writeHashList(result, i); });
  }
}

PlatformKit::Path RunClosing::writeHashList(const OffloadResult& result,
                                            std::size_t destination) const {
  std::vector<MHL::Entry> extra;
  const auto& image = result.cardImage;
  if (image && image->outcome.isVerified() && image->hash && plan_.cardImage &&
      plan_.cardImage->destinationIndex == destination) {
    extra.push_back({image->relativePath, image->size, result.finished, *image->hash});
  }
  return MHL::writeGeneration(system_, result.files, destination, plan_.destinations[destination],
                              extra, plan_.algorithm, system_.clock.now());
}

}  // namespace OffloadKit
