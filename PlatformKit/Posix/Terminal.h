#pragma once

#include <cstddef>

namespace PlatformKit {

/// The standard streams that text for people goes to.
enum class OutputStream { standardOutput, standardError };

/// Whether the stream ends at a terminal that can redraw a line. Any thread.
bool isTerminal(OutputStream stream);

/// The terminal's width in character cells; 80 when it does not say. Any thread.
std::size_t terminalWidth(OutputStream stream);

/// Whether text may hold characters outside ASCII: the locale of the environment is a UTF-8 one.
/// Reads the environment; not while another thread changes it.
bool environmentIsUtf8();

}  // namespace PlatformKit
