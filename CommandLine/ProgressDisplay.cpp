#include "CommandLine/ProgressDisplay.h"

#include "CommandLine/Output.h"
#include "OffloadKit/Wording/Format.h"
#include "OffloadKit/Wording/ProgressTexts.h"
#include "PlatformKit/Posix/Terminal.h"
#include "TextKit/Translation.h"
#include "TextKit/Unicode.h"

#include <algorithm>
#include <cstdio>
#include <optional>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace CommandLine {
namespace {

using OffloadKit::OffloadProgress;
using Phase = OffloadProgress::Phase;
using TextKit::filled;
using TextKit::translate;
namespace ProgressTexts = OffloadKit::ProgressTexts;

// For the redrawn line, where copying and verifying alternate with every file.
std::string phaseWord(Phase phase) {
  switch (phase) {
    case Phase::scanning:
      return translate("Terminal", "Reading");
    case Phase::copying:
      return translate("Terminal", "Copying");
    case Phase::verifying:
      return translate("Terminal", "Checking");
    case Phase::imaging:
      return translate("Terminal", "Imaging");
    case Phase::finishing:
      return translate("Terminal", "Finishing");
  }
  return "";
}

// As wide as the others that alternate with it, so that the bar keeps still.
std::string paddedPhaseWord(Phase phase) {
  std::size_t width = 0;
  for (const Phase other : {Phase::scanning, Phase::copying, Phase::verifying, Phase::imaging}) {
    width = std::max(width, TextKit::cellWidth(phaseWord(other)));
  }
  std::string word = phaseWord(phase);
  const std::size_t own = TextKit::cellWidth(word);
  return own < width ? word.append(width - own, ' ') : word;
}

const char* phaseName(Phase phase) {
  switch (phase) {
    case Phase::scanning:
      return "scanning";
    case Phase::copying:
      return "copying";
    case Phase::verifying:
      return "verifying";
    case Phase::imaging:
      return "imaging";
    case Phase::finishing:
      return "finishing";
  }
  return "";
}

int percent(const OffloadProgress& progress) {
  return static_cast<int>(std::clamp(progress.fraction, 0.0, 1.0) * 100);
}

// "412 of 1,204 files".
std::string filesOf(const OffloadProgress& progress) {
  const std::size_t total = progress.filesTotal;
  return filled(
      translate("Terminal", "%1 of %2 files", "%1 of %2 file", total),
      {OffloadKit::Format::grouped(progress.filesDone), OffloadKit::Format::grouped(total)});
}

// Lets a report through when enough time has passed since the last one.
class Pace {
 public:
  Pace(const PlatformKit::Clock& clock, std::chrono::milliseconds interval)
      : clock_(clock), interval_(interval) {}

  bool isDue() {
    const auto now = clock_.now();
    // A clock set back must not silence the display.
    if (last_ && now >= *last_ && now - *last_ < interval_) return false;
    last_ = now;
    return true;
  }

 private:
  const PlatformKit::Clock& clock_;
  std::chrono::milliseconds interval_;
  std::optional<PlatformKit::Date> last_;
};

// Time left at the average pace so far, as the running screen tells it.
class Estimate {
 public:
  explicit Estimate(const PlatformKit::Clock& clock) : clock_(clock), started_(clock.now()) {}

  [[nodiscard]] std::string text(const OffloadProgress& progress) const {
    const double elapsed = std::chrono::duration<double>(clock_.now() - started_).count();
    return ProgressTexts::remaining(progress, elapsed);
  }

 private:
  const PlatformKit::Clock& clock_;
  PlatformKit::Date started_;
};

class SilentDisplay final : public ProgressDisplay {
 public:
  void show(const OffloadProgress& /*progress*/) override {}
  void finish() override {}
};

class TerminalDisplay final : public ProgressDisplay {
 public:
  explicit TerminalDisplay(const PlatformKit::Clock& clock)
      : pace_(clock, std::chrono::milliseconds(100)), estimate_(clock) {}

  void show(const OffloadProgress& progress) override {
    if (progress.phase != Phase::finishing && !pace_.isDue()) return;
    const std::size_t width =
        PlatformKit::terminalWidth(PlatformKit::OutputStream::standardError) - 1;
    printError("\r\033[K" + forThisTerminal(line(progress, width)));
    drawn_ = true;
  }

  void finish() override {
    if (drawn_) printError("\r\033[K");
    drawn_ = false;
  }

 private:
  static std::string bar(double fraction, std::size_t cells) {
    const auto full =
        static_cast<std::size_t>(std::clamp(fraction, 0.0, 1.0) * static_cast<double>(cells));
    std::string text;
    for (std::size_t i = 0; i < cells; ++i) text += i < full ? "█" : "░";
    return text;
  }

  // What does not fit goes from the end: first the file's name, then the time left.
  [[nodiscard]] std::string line(const OffloadProgress& progress, std::size_t width) const {
    std::string text = fmt::format(
        "{}  {} {:3} %", paddedPhaseWord(progress.phase),
        bar(progress.fraction, std::clamp<std::size_t>(width / 5, 5, 24)), percent(progress));
    if (progress.filesTotal == 0) return TextKit::elidedInTheMiddle(text, width);
    text += fmt::format("  {}  {:>10}  {:<16}", filesOf(progress), ProgressTexts::speed(progress),
                        estimate_.text(progress));
    const std::size_t used = TextKit::cellWidth(text) + 2;
    constexpr std::size_t kWorthShowing = 12;
    if (used + kWorthShowing <= width) {
      text += "  " + TextKit::elidedInTheMiddle(TextKit::singleLineText(progress.currentFile),
                                                width - used);
    }
    return TextKit::cellWidth(text) <= width ? text : TextKit::elidedInTheMiddle(text, width);
  }

  Pace pace_;
  Estimate estimate_;
  bool drawn_ = false;
};

class LogDisplay final : public ProgressDisplay {
 public:
  LogDisplay(const OffloadKit::OffloadPlan& plan, const PlatformKit::Clock& clock)
      : destinations_(plan.destinations.size()), pace_(clock, std::chrono::seconds(10)) {}

  void show(const OffloadProgress& progress) override {
    // The pace starts with the first file, so that a short run logs its start and its end only.
    if (progress.phase == Phase::scanning || progress.phase == Phase::finishing) {
      printError(forThisTerminal(ProgressTexts::phase(progress, destinations_)) + "\n");
    } else if (pace_.isDue()) {
      printError(forThisTerminal(filled(translate("Terminal", "%1: %2 %, %3, %4"),
                                        {ProgressTexts::phase(progress, destinations_),
                                         std::to_string(percent(progress)), filesOf(progress),
                                         ProgressTexts::speed(progress)})) +
                 "\n");
    }
  }

  void finish() override {}

 private:
  std::size_t destinations_;
  Pace pace_;
};

class JsonDisplay final : public ProgressDisplay {
 public:
  explicit JsonDisplay(const PlatformKit::Clock& clock)
      : pace_(clock, std::chrono::milliseconds(100)) {}

  void show(const OffloadProgress& progress) override {
    const bool isMilestone =
        progress.phase == Phase::scanning || progress.phase == Phase::finishing;
    if (!isMilestone && !pace_.isDue()) return;
    printJsonLine({{"type", "progress"},
                   {"phase", phaseName(progress.phase)},
                   {"filesDone", progress.filesDone},
                   {"filesTotal", progress.filesTotal},
                   {"bytesTotal", progress.bytesTotal},
                   {"fraction", progress.fraction},
                   {"currentFile", progress.currentFile},
                   {"bytesPerSecond", progress.bytesPerSecond}});
  }

  void finish() override {}

 private:
  Pace pace_;
};

}  // namespace

std::unique_ptr<ProgressDisplay> makeSilentDisplay() {
  return std::make_unique<SilentDisplay>();
}

std::unique_ptr<ProgressDisplay> makeTerminalDisplay(const PlatformKit::Clock& clock) {
  return std::make_unique<TerminalDisplay>(clock);
}

std::unique_ptr<ProgressDisplay> makeLogDisplay(const OffloadKit::OffloadPlan& plan,
                                                const PlatformKit::Clock& clock) {
  return std::make_unique<LogDisplay>(plan, clock);
}

std::unique_ptr<ProgressDisplay> makeJsonDisplay(const PlatformKit::Clock& clock) {
  return std::make_unique<JsonDisplay>(clock);
}

}  // namespace CommandLine
