#pragma once

#include "DeviceKit/ByteSource.h"
#include "OffloadKit/Copying/Pipeline.h"
#include "OffloadKit/Records/OffloadResult.h"
#include "OffloadKit/Records/Reason.h"

#include <functional>
#include <optional>
#include <string>

/// Saves a card's whole device, deleted space included, as one file of its raw bytes.
namespace OffloadKit::CardImager {

/// The image's file name: the card's name made safe ("Card" when empty), the local time to the
/// minute, ".img", as in EOS_DIGITAL_2025-05-03_1407.img. Any thread.
std::string fileName(const std::string& card, PlatformKit::Date date);

/// What an imager asks and tells its caller, on the calling thread.
struct Caller {
  /// Whether to stop; asked before each chunk.
  std::function<bool()> isCancelled;
  /// Why nothing may be written to the folder any more; asked before anything is written there and
  /// before the image gets its name. May be empty: nothing stands against it.
  std::function<std::optional<Reason>()> whyNot = {};
  /// Gets the bytes just handled, twice the image's size in all.
  std::function<void(double)> progress;
};

/// Writes the image of `source` to the folder "Card Image" in `folder`, which people know as
/// `path`, under `name`, reads it back from the drive and compares. Blocks that cannot be read are
/// zeros in the image and counted. The name appears only once the image is verified; an image of
/// that name is never overwritten. `pipeline`: one that nothing is being done with.
///
/// What goes wrong is told in the result. Throws only OffloadError::cancelled (and std::bad_alloc,
/// std::system_error when the system gives no memory or threads); no temporary file is left.
CardImageResult write(DeviceKit::ByteSource& source, PlatformKit::Folder& folder,
                      const PlatformKit::Path& path, const std::string& name,
                      HashKit::HashAlgorithm algorithm, Pipeline& pipeline, const Caller& caller);

}  // namespace OffloadKit::CardImager
