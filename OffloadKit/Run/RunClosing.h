#pragma once

#include "DeviceKit/BlockDeviceSource.h"
#include "DeviceKit/RawDeviceAccess.h"
#include "OffloadKit/Copying/Lane.h"
#include "OffloadKit/Copying/Pipeline.h"
#include "OffloadKit/Records/OffloadPlan.h"
#include "OffloadKit/Records/OffloadResult.h"
#include "PlatformKit/System.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace OffloadKit {

/// The stages around the files of a run: the card's device is opened before them, its image written
/// after them, and at the end every drive gets its report and hash list. Internal to the engine,
/// one thread.
class RunClosing {
 public:
  /// The arguments outlive this object.
  RunClosing(const OffloadPlan& plan, PlatformKit::System system,
             const DeviceKit::RawDeviceAccess& rawDevices, Lanes& lanes)
      : plan_(plan), clock_(system.clock), rawDevices_(rawDevices), lanes_(lanes) {}

  /// Opens the card's device when the plan wants an image. Done before any file is copied, so that
  /// a system's question for a password comes at the start. Throws
  /// OffloadError::cardImageUnavailable.
  void openCardDevice();

  /// Bytes that the image will take: written once, read back once; 0 without an image.
  [[nodiscard]] std::uint64_t imageWork() const;

  /// Writes and checks the image, if the device was opened and its destination exists. One on a
  /// destination that was given up fails with that sentence. `progress` gets the image's name and
  /// the bytes just handled. Failures are in the result. Throws OffloadError::cancelled.
  std::optional<CardImageResult> writeCardImage(
      PlatformKit::Date started, Pipeline& pipeline, const std::function<bool()>& isCancelled,
      const std::function<void(const std::string&, double)>& progress);

  /// Writes the report and then the hash list, which lists the report, on every destination with a
  /// verified file, and adds them to the result, or why they are missing. `hidden`: the relative
  /// path of a file that no copy has, to see whether a drive still takes changes behind them.
  void writeRecords(OffloadResult& result, const PlatformKit::Path& hidden) const;

 private:
  void writeRecord(OffloadResult& result, MissingRecord::Kind kind, std::size_t destination) const;
  [[nodiscard]] PlatformKit::Path writeHashList(const OffloadResult& result,
                                                std::size_t destination) const;
  void takeBackRecords(OffloadResult& result, std::size_t destination, Reason reason) const;
  void tellGivenUp(OffloadResult& result) const;

  const OffloadPlan& plan_;
  const PlatformKit::Clock& clock_;
  const DeviceKit::RawDeviceAccess& rawDevices_;
  Lanes& lanes_;
  std::unique_ptr<DeviceKit::ByteSource> card_;
};

}  // namespace OffloadKit
