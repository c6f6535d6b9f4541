#include "OffloadKit/Run/RunClosing.h"

#include "DeviceKit/DeviceError.h"
#include "OffloadKit/Copying/CardImager.h"
#include "OffloadKit/Proof/MHL.h"
#include "OffloadKit/Proof/OffloadReport.h"
#include "OffloadKit/Records/OffloadError.h"
#include "OffloadKit/Transfer/DurableNames.h"
#include "PlatformKit/Paths.h"

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
    PlatformKit::Date started, Pipeline& pipeline, const std::function<bool()>& isCancelled,
    const std::function<void(const std::string&, double)>& progress) {
  if (!card_ || plan_.cardImage->destinationIndex >= lanes_.size()) return std::nullopt;
  Lane& lane = lanes_[plan_.cardImage->destinationIndex];
  const auto whyNot = [&lane]() -> std::optional<Reason> {
    lane.checkPlace();
    const Reason* givenUp = lane.givenUp();
    return givenUp != nullptr ? std::optional(*givenUp) : std::nullopt;
  };
  const std::string name = CardImager::fileName(plan_.sourceName, started);
  return CardImager::write(*card_, lane.folder(), lane.path(), name, plan_.algorithm, pipeline,
                           {isCancelled, whyNot, [&](double bytes) { progress(name, bytes); }});
}

void RunClosing::writeRecords(OffloadResult& result, const PlatformKit::Path& hidden) const {
  // All of them first: what became of one drive stands in the reports of the others.
  for (Lane& lane : lanes_) lane.checkPlace();
  tellGivenUp(result);
  for (std::size_t i = 0; i < lanes_.size(); ++i) {
    if (result.verifiedCount(i) == 0) continue;
    writeRecord(result, MissingRecord::Kind::report, i);
    writeRecord(result, MissingRecord::Kind::hashList, i);
    Lane& lane = lanes_[i];
    if (const int error = checkTakesChanges(lane.folder(), hidden); error != 0) {
      takeBackRecords(result, i, lane.otherError(error));
    }
  }
  tellGivenUp(result);
}

// Their flush said yes on a drive that had died by then.
void RunClosing::takeBackRecords(OffloadResult& result, std::size_t destination,
                                 Reason reason) const {
  const auto takeBack = [&](std::vector<PlatformKit::Path>& records, MissingRecord::Kind kind) {
    const bool isTold =
        !records.empty() && PlatformKit::isInside(records.back(), lanes_[destination].path());
    if (!isTold) return;
    records.pop_back();
    result.missingRecords.push_back({kind, destination, reason});
  };
  takeBack(result.reports, MissingRecord::Kind::report);
  takeBack(result.mhlFiles, MissingRecord::Kind::hashList);
}

void RunClosing::tellGivenUp(OffloadResult& result) const {
  for (std::size_t i = 0; i < lanes_.size(); ++i) {
    if (const Reason* reason = lanes_[i].givenUp())
      result.destinationErrors.insert_or_assign(i, *reason);
  }
}

// A record that cannot be written must not spoil a verified offload; the result tells it.
void RunClosing::writeRecord(OffloadResult& result, MissingRecord::Kind kind,
                             std::size_t destination) const {
  const bool isReport = kind == MissingRecord::Kind::report;
  Lane& lane = lanes_[destination];
  Reason reason(Reason::Kind::disconnected);
  lane.checkPlace();
  try {
    if (!lane.isDisconnected()) {
      const PlatformKit::Path path =
          isReport ? PlatformKit::Path(OffloadReport::write(lane.folder(), result, destination))
                   : writeHashList(result, destination);
      lane.checkPlace();
      if (!lane.isDisconnected()) {
        (isReport ? result.reports : result.mhlFiles).push_back(lane.path() / path);
        return;
      }
    }
  } catch (const std::system_error& error) {
    reason = lane.otherError(error.code().value());
  } catch (const std::exception& error) {
    reason = Reason::fromOutside(error.what());
  }
  result.missingRecords.push_back({kind, destination, std::move(reason)});
}

PlatformKit::Path RunClosing::writeHashList(const OffloadResult& result,
                                            std::size_t destination) const {
  std::vector<MHL::Entry> extra;
  const auto& image = result.cardImage;
  if (image && image->outcome.isVerified() && image->hash && plan_.cardImage &&
      plan_.cardImage->destinationIndex == destination) {
    extra.push_back({image->relativePath, image->size, result.finished, *image->hash});
  }
  const Lane& lane = lanes_[destination];
  return MHL::writeGeneration(lane.folder(), PlatformKit::lastComponent(lane.path()), result.files,
                              destination, extra, plan_.algorithm, clock_.now());
}

}  // namespace OffloadKit
