#pragma once

#include <cstddef>

namespace PlatformKit {

/// The standard streams that text for people goes to.
enum class OutputStream { standardOutput, standardError };

/// Opens /dev/null for each of the three standard streams that whoever started the program left
/// closed, for reading only: what is written there fails. Without it the next file opened would
/// take the stream's number, and text for people would end up in it. Call it first in main.
void openMissingStandardStreams();

/// Whether the stream ends at a terminal that can redraw a line. Any thread.
bool isTerminal(OutputStream stream);

/// The terminal's width in character cells; 80 when it does not say. Any thread.
std::size_t terminalWidth(OutputStream stream);

/// Whether text may hold characters outside ASCII: the locale of the environment is a UTF-8 one.
/// Reads the environment; not while another thread changes it.
bool environmentIsUtf8();

}  // namespace PlatformKit
