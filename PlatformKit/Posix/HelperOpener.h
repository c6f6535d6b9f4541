#pragma once

#include "PlatformKit/RawDevices.h"

#include <string>
#include <vector>

namespace PlatformKit {

/// The folder of the running program, with links resolved; "/" when the system does not tell.
Path programFolder();

/// The path of a helper program. An installation has it at `installed`, seen from the `folder` of
/// the program it belongs to, such as "../libexec/zephrimark-open-device"; when there is nothing,
/// it is right in that folder, as it is before anything is installed. Without "..", as pkexec's
/// actions name it; nothing needs to be there.
Path helperProgram(const Path& folder, const Path& installed);

/// Has devices opened by another program, which runs with more rights and hands the descriptor back
/// over its standard output, a socket.
class HelperOpener final : public PrivilegedOpener {
 public:
  /// `command`: the program (its path, or its name if it is on our PATH) and its first arguments,
  /// such as {"pkexec", "/usr/libexec/zephrimark-open-device"}; the device's path is added as the
  /// last one. Not empty.
  explicit HelperOpener(std::vector<std::string> command) : command_(std::move(command)) {}

  /// Starts the program and waits for its end; it has empty input, no place for error messages, and
  /// no other descriptor of this process. Any thread, several at once; never throws.
  ///
  /// - opened: a descriptor came that is read-only and the device's, whatever the program's status.
  /// - declined: no such descriptor came, and the program's status is that of pkexec for
  ///   "dismissed" (126) or "not authorized, or an error" (127), or it was ended by Ctrl-C.
  /// - unavailable: a program of the command is missing or cannot be started, or it ended otherwise
  ///   without handing over such a descriptor.
  [[nodiscard]] Answer openReadOnly(const Path& device) override;

 private:
  std::vector<std::string> command_;
};

}  // namespace PlatformKit
