#pragma once

#include "PlatformKit/FileSystem.h"
#include "PlatformKit/Posix/UniqueFd.h"

namespace PlatformKit {

/// Sends a descriptor to the process at the other end of a connected UNIX stream socket, which gets
/// one of its own for the same open file. The caller keeps both. Blocks while the socket is full.
/// Answers 0 or an error number, EPIPE (and no signal) when the other end is closed. Any thread.
[[nodiscard]] int sendDescriptor(int socket, int descriptor);

/// Waits for one message on a connected UNIX stream socket and answers the first descriptor in it,
/// close-on-exec and owned by the caller; every other descriptor that came along is closed. Answers
/// an invalid one when the message holds none or more than there is room for, when the other end is
/// closed, and on every error. The caller keeps the socket. Any thread.
[[nodiscard]] UniqueFd receiveDescriptor(int socket);

/// Whether a descriptor that somebody else opened is what was asked for: the block device at the
/// path, open for reading and not for writing. False also when that cannot be told. Any thread.
[[nodiscard]] bool isReadOnlyDevice(int descriptor, const Path& device);

}  // namespace PlatformKit
