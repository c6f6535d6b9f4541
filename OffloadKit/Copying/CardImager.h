#pragma once

#include "DeviceKit/ByteSource.h"
#include "OffloadKit/Records/OffloadResult.h"
#include "PlatformKit/System.h"

#include <functional>
#include <optional>
#include <string>

/// Saves a card's whole device, deleted space included, as one file of its raw bytes.
namespace OffloadKit::CardImager {

/// The image's file name: the card's name made safe ("Card" when empty), the local time to the
/// minute,
/// ".img", as in EOS_DIGITAL_2025-05-03_1407.img. Any thread.
std::string fileName(const std::string& card, PlatformKit::Date date);

/// What an imager asks its caller.
struct Questions {
  /// Whether to stop; asked before each chunk.
  std::function<bool()> isCancelled;
  /// Why nothing may be written to the folder any more; asked before anything is
  /// written there and before the image gets its name. May be empty: nothing stands against it.
  std::function<std::optional<Reason>()> whyNot = {};
};

/// Writes the image of `source` to the folder "Card Image" in `folder` under `name`, reads it back
/// from the drive and compares. Blocks that cannot be read are zeros in the image and counted. The
/// name appears only once the image is verified; an image of that name is never overwritten.
///
/// `chunkSize`: bytes per read, at least 1. `progress` gets the bytes just handled, twice the image's
/// size in all. It and the questions are called on the calling thread.
///
/// What goes wrong is told in the result. Throws only OffloadError::cancelled (and std::bad_alloc,
/// std::system_error when the system gives no memory or threads); no temporary file is left.
CardImageResult write(PlatformKit::System system, DeviceKit::ByteSource& source,
                      const PlatformKit::Path& folder, const std::string& name,
                      HashKit::HashAlgorithm algorithm, std::size_t chunkSize, const Questions& ask,
                      const std::function<void(double)>& progress);

}  // namespace OffloadKit::CardImager
