#include "OffloadKit/Run/RunClosing.h"

#include "DeviceKit/DeviceError.h"
#include "OffloadKit/Copying/CardImager.h"
#include "OffloadKit/Proof/MHL.h"
#include "OffloadKit/Proof/OffloadReport.h"
#include "OffloadKit/Records/OffloadError.h"

#include <cerrno>
#include <system_error>

namespace OffloadKit {
void RunClosing::openCardDevice() {
  if (!plan_.cardImage) return;
  const std::string& path = plan_.cardImage->devicePath;
  try {
    card_ = std::make_unique<DeviceKit::BlockDeviceSource>(rawDevices_.openReadOnly(path), path);
  } catch (const DeviceKit::DeviceError& error) {
    throw OffloadError::cardImageUnavailable(error.reason());
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
  const std::size_t destination = plan_.cardImage->destinationIndex;
  const auto whyNot = [this, destination]() -> std::optional<Reason> {
    health_.checkPlace(destination);
    const Reason* givenUp = health_.givenUp(destination);
    return givenUp != nullptr ? std::optional(*givenUp) : std::nullopt;
  };
  const std::string name = CardImager::fileName(plan_.sourceName, started);
  return CardImager::write(system_, *card_, plan_.destinations[destination], name, plan_.algorithm,
                           plan_.chunkSize, {isCancelled, whyNot},
                           [&](double bytes) { progress(name, bytes); });
}

void RunClosing::writeRecords(OffloadResult& result) const {
  // All of them first: what became of one drive stands in the reports of the others.
  for (std::size_t i = 0; i < plan_.destinations.size(); ++i) health_.checkPlace(i);
  result.destinationErrors = health_.errors();
  for (std::size_t i = 0; i < plan_.destinations.size(); ++i) {
    if (result.verifiedCount(i) == 0) continue;
    writeRecord(result, MissingRecord::Kind::report, i);
    writeRecord(result, MissingRecord::Kind::hashList, i);
  }
  result.destinationErrors = health_.errors();
}

// A record that cannot be written must not spoil a verified offload; the result tells it.
void RunClosing::writeRecord(OffloadResult& result, MissingRecord::Kind kind, std::size_t i) const {
  const bool isReport = kind == MissingRecord::Kind::report;
  std::optional<Reason> reason;
  health_.checkPlace(i);
  try {
    // Where a drive was mounted that is gone, a folder of the computer's own disk comes to light.
    if (!health_.isDisconnected(i)) {
      const auto path =
          isReport ? OffloadReport::write(system_, result, i) : writeHashList(result, i);
      health_.checkPlace(i);
      if (!health_.isDisconnected(i)) {
        (isReport ? result.reports : result.mhlFiles).push_back(path);
        return;
      }
    }
    reason = Reason(Reason::Kind::disconnected);
  } catch (const std::system_error& error) {
    reason = health_.otherError(i, error.code().value());
  } catch (const std::exception& error) {
    reason = Reason::fromOutside(error.what());
  }
  result.missingRecords.push_back({kind, i, *std::move(reason)});
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
