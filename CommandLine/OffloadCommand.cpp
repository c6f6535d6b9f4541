#include "CommandLine/OffloadCommand.h"

#include "CommandLine/ExitStatus.h"
#include "CommandLine/Output.h"
#include "CommandLine/ProgressDisplay.h"
#include "CommandLine/ResultJson.h"
#include "CommandLine/Verdict.h"
#include "OffloadKit/OffloadEngine.h"
#include "PlatformKit/Posix/Interrupts.h"
#include "PlatformKit/Posix/Terminal.h"
#include "PlatformKit/Unicode.h"

#include <atomic>

#include <nlohmann/json.hpp>

namespace CommandLine {
namespace {

std::unique_ptr<ProgressDisplay> displayFor(const OffloadArguments& arguments,
                                            const OffloadKit::OffloadPlan& plan,
                                            const PlatformKit::Clock& clock) {
  if (arguments.quiet) return makeSilentDisplay();
  if (arguments.json) return makeJsonDisplay(clock);
  if (PlatformKit::isTerminal(PlatformKit::OutputStream::standardError)) {
    return makeTerminalDisplay(clock);
  }
  return makeLogDisplay(plan, clock);
}

// Everything that was asked for is there and verified, and all of the card could be read.
bool isComplete(const OffloadKit::OffloadResult& result) {
  const auto& image = result.cardImage;
  return result.allVerified() && result.unreadable.empty() &&
         (!image || (image->outcome.isVerified() && image->unreadableBlocks == 0));
}

void tellResult(const OffloadArguments& arguments, const OffloadKit::OffloadResult& result) {
  if (arguments.json) printJsonLine(resultJson(result));
  if (arguments.quiet && isComplete(result)) return;
  if (arguments.json) {
    printError(verdict(result, true));
  } else {
    print(verdict(result, false));
  }
}

void tellError(const std::string& sentence) {
  printError(forThisTerminal("zephrimark: " + PlatformKit::singleLineText(sentence)) + "\n");
}

}  // namespace

int runOffload(const OffloadArguments& arguments, const Services& services) {
  const PlatformKit::System& system = services.system;
  OffloadKit::OffloadEngine engine(system, services.rawDevices);
  std::atomic<int> interruptedBy = 0;
  const PlatformKit::Interrupts interrupts([&](int signal) {
    interruptedBy = signal;
    engine.cancel();
    // A check of a large file can still take a while, and somebody is looking.
    if (PlatformKit::isTerminal(PlatformKit::OutputStream::standardError)) {
      printError("\nStopping after this step. Press Ctrl-C again to end at once.\n");
    }
  });
  std::unique_ptr<ProgressDisplay> display = makeSilentDisplay();
  try {
    const OffloadKit::OffloadPlan plan = planFor(arguments, system, services.disks);
    display = displayFor(arguments, plan, system.clock);
    const auto result = engine.run(
        plan, [&](const OffloadKit::OffloadProgress& progress) { display->show(progress); });
    display->finish();
    tellResult(arguments, result);
    return isComplete(result) ? allVerified : notEverything;
  } catch (const ArgumentError& error) {
    tellError(error.what());
    return wrongArguments;
  } catch (const OffloadKit::OffloadError& error) {
    display->finish();
    tellError(error.what());
    if (error.isCancelled()) return stoppedByInterrupt + interruptedBy;
  } catch (const std::exception& error) {
    display->finish();
    tellError(error.what());
  }
  return stoppedByError;
}

}  // namespace CommandLine
