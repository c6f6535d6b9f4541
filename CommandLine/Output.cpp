#include "CommandLine/Output.h"

#include "PlatformKit/Posix/Terminal.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

#include <nlohmann/json.hpp>

namespace CommandLine {
namespace {

int lostOutput = 0;

// Answers 0 or the error number.
int write(std::FILE* stream, const std::string& text) {
  errno = 0;
  const bool isWhole = std::fwrite(text.data(), 1, text.size(), stream) == text.size();
  if (std::fflush(stream) == 0 && isWhole) return 0;
  return errno != 0 ? errno : EIO;
}

void replaceAll(std::string& text, std::string_view what, std::string_view with) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size()) {
    text.replace(at, what.size(), with);
  }
}

constexpr std::array<std::pair<std::string_view, std::string_view>, 8> kLikenesses = {{{"█", "#"},
                                                                                       {"░", "-"},
                                                                                       {"✓", "+"},
                                                                                       {"✗", "x"},
                                                                                       {"…", "~"},
                                                                                       {"–", "-"},
                                                                                       {"·", "-"},
                                                                                       {"�", "?"}}};

}  // namespace

void print(const std::string& text) {
  const int error = write(stdout, text);
  if (lostOutput == 0) lostOutput = error;
}

void printError(const std::string& text) {
  // Ignored on purpose: there is nowhere left to tell it.
  static_cast<void>(write(stderr, text));
}

void printJsonLine(const nlohmann::json& object) {
  print(object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n");
}

int outputError() {
  return lostOutput;
}

std::string forThisTerminal(std::string text) {
  static const bool utf8 = PlatformKit::environmentIsUtf8();
  if (!utf8) {
    for (const auto& [symbol, likeness] : kLikenesses) replaceAll(text, symbol, likeness);
  }
  return text;
}

std::string styled(const std::string& text, Style style, bool onStandardError) {
  const auto stream = onStandardError ? PlatformKit::OutputStream::standardError
                                      : PlatformKit::OutputStream::standardOutput;
  // NOLINTNEXTLINE(concurrency-mt-unsafe): nobody changes the environment
  const char* noColor = std::getenv("NO_COLOR");
  if ((noColor != nullptr && *noColor != '\0') || !PlatformKit::isTerminal(stream)) return text;
  constexpr std::array<const char*, 3> kCodes = {"\033[1m", "\033[1;32m", "\033[1;31m"};
  return kCodes[static_cast<std::size_t>(style)] + text + "\033[0m";
}

}  // namespace CommandLine
