#pragma once

#include <string>

#include <nlohmann/json_fwd.hpp>

namespace CommandLine {

/// Writes the text as it stands to standard output or standard error, at once. An offload goes on
/// when nobody listens any more; that something for standard output was lost is told by
/// `outputError`. Main thread, but for `printError`.
void print(const std::string& text);
void printError(const std::string& text);

/// The error number that standard output answered when something was lost there; 0 while all of it
/// was written.
[[nodiscard]] int outputError();

/// Writes the object as one line to standard output, at once. Bytes that are not UTF-8 appear as
/// U+FFFD.
void printJsonLine(const nlohmann::json& object);

/// The text in what the environment's locale can show: without UTF-8, bars, ticks, dashes and
/// ellipses become their ASCII likeness.
std::string forThisTerminal(std::string text);

/// The text in bold, green or red where the stream is a terminal and the user has not switched
/// colour off (environment variable NO_COLOR); else unchanged.
enum class Style { strong, good, bad };
std::string styled(const std::string& text, Style style, bool onStandardError);

}  // namespace CommandLine
