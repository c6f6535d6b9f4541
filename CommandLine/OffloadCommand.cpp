#include "CommandLine/OffloadCommand.h"

#include "CommandLine/ExitStatus.h"
#include "CommandLine/Output.h"
#include "CommandLine/ProgressDisplay.h"
#include "CommandLine/ResultJson.h"
#include "CommandLine/Verdict.h"
#include "DeviceKit/CardEjector.h"
#include "DeviceKit/Places.h"
#include "OffloadKit/OffloadEngine.h"
#include "OffloadKit/Wording/ShownReason.h"
#include "PlatformKit/Posix/Interrupts.h"
#include "PlatformKit/Posix/Terminal.h"
#include "TextKit/Translation.h"
#include "TextKit/Unicode.h"

#include <atomic>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

namespace CommandLine {
namespace {

using OffloadKit::Reason;
using OffloadKit::Verdict;
using TextKit::filled;
using TextKit::translate;

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

void tellResult(const OffloadArguments& arguments, const OffloadKit::OffloadResult& result,
                const Verdict& verdict) {
  if (arguments.json) printJsonLine(resultJson(result, verdict));
  if (arguments.quiet && verdict.isGood()) return;
  if (arguments.json) {
    printError(verdictText(result, verdict, true));
  } else {
    print(verdictText(result, verdict, false));
  }
}

void tellError(const std::string& sentence) {
  printError(forThisTerminal("zephrimark: " + TextKit::singleLineText(sentence)) + "\n");
}

// Only a card can be ejected; to leave a folder's disk alone is no reason to stop.
bool shallEject(const OffloadArguments& arguments, const OffloadKit::OffloadPlan& plan,
                PlatformKit::System system) {
  if (!arguments.eject || DeviceKit::isVolumeRoot(system, plan.source)) return arguments.eject;
  tellError(
      filled(translate("Terminal", "\"%1\" is a folder, not a whole card. It will not be ejected."),
             {plan.source.native()}));
  return false;
}

// Answers none when it was done, else why not.
std::optional<Reason> ejectCard(const OffloadKit::OffloadResult& result, const Verdict& verdict,
                                const Composition::Machine& machine) {
  if (!verdict.mayEject()) {
    return Reason(Reason::Kind::notAllVerified);
  }
  if (outputError() != 0) {
    return Reason(Reason::Kind::resultNotWritten);
  }
  const OffloadKit::OffloadPlan& plan = result.plan;
  // Once it is taken out, its folder may lie on another disk.
  if (!DeviceKit::isVolumeRoot(machine.platform(), plan.source)) {
    return Reason(Reason::Kind::notMounted, {plan.sourceName});
  }
  return DeviceKit::CardEjector(machine.disks(), &machine.ejector())
      .eject(plan.source, plan.sourceName);
}

void tellEjection(const OffloadArguments& arguments, const std::string& name,
                  const std::optional<Reason>& problem) {
  if (arguments.json) {
    printJsonLine({{"type", "eject"},
                   {"ejected", !problem},
                   {"reason", problem ? nlohmann::json(problem->english()) : nlohmann::json()}});
  }
  if (problem) {
    tellError(OffloadKit::shown(*problem));
  } else if (!arguments.quiet) {
    const std::string sentence =
        filled(translate("Terminal", "Ejected %1."), {TextKit::singleLineText(name)});
    const std::string done = forThisTerminal("\n" + sentence + "\n");
    arguments.json ? printError(done) : print(done);
  }
}

}  // namespace

int runOffload(const OffloadArguments& arguments, const Composition::Machine& machine) {
  const PlatformKit::System system = machine.platform();
  OffloadKit::OffloadEngine engine(system, machine.rawDevices());
  std::atomic<int> interruptedBy = 0;
  const PlatformKit::Interrupts interrupts([&](int signal) {
    interruptedBy = signal;
    engine.cancel();
    // A check of a large file can still take a while, and somebody is looking.
    if (PlatformKit::isTerminal(PlatformKit::OutputStream::standardError)) {
      printError(
          "\n" +
          translate("Terminal", "Stopping after this step. Press Ctrl-C again to end at once.") +
          "\n");
    }
  });
  std::unique_ptr<ProgressDisplay> display = makeSilentDisplay();
  try {
    const OffloadKit::OffloadPlan plan =
        planFor(arguments, system, DeviceKit::DiskEnumerator(machine.disks(), nullptr));
    const bool eject = shallEject(arguments, plan, system);
    display = displayFor(arguments, plan, system.clock);
    const auto result = engine.run(
        plan, [&](const OffloadKit::OffloadProgress& progress) { display->show(progress); });
    display->finish();
    const Verdict verdict(result);
    tellResult(arguments, result, verdict);
    if (eject) tellEjection(arguments, plan.sourceName, ejectCard(result, verdict, machine));
    return verdict.isGood() ? allVerified : notEverything;
  } catch (const ArgumentError& error) {
    tellError(error.what());
    return wrongArguments;
  } catch (const OffloadKit::OffloadError& error) {
    display->finish();
    tellError(OffloadKit::shown(error.reason()));
    if (error.isCancelled()) return stoppedByInterrupt + interruptedBy;
  } catch (const std::exception& error) {
    display->finish();
    tellError(error.what());
  }
  return stoppedByError;
}

}  // namespace CommandLine
