#include "CommandLine/CardsCommand.h"
#include "CommandLine/DisksCommand.h"
#include "CommandLine/ExitStatus.h"
#include "CommandLine/OffloadCommand.h"
#include "CommandLine/Output.h"
#include "CommandLine/ParserTexts.h"
#include "Composition/Machine.h"
#include "HashKit/HashAlgorithm.h"
#include "OffloadKit/Wording/ShownReason.h"
#include "PlatformKit/Posix/OpenFiles.h"
#include "PlatformKit/Posix/SystemText.h"
#include "PlatformKit/Posix/Terminal.h"
#include "TextKit/Translation.h"
#include "Translations/Language.h"

#include <memory>
#include <string_view>

#include <CLI/CLI.hpp>

namespace {

using TextKit::filled;
using TextKit::translate;

// The parser's own line of usage has a notation of its own for lists.
class OffloadHelp final : public CLI::Formatter {
 public:
  explicit OffloadHelp(const CLI::Formatter& words) : CLI::Formatter(words) {}

  std::string make_usage(const CLI::App* /*command*/, std::string /*name*/) const override {
    return translate("Terminal",
                     "Usage: zephrimark offload [OPTIONS] SOURCE DESTINATION [DESTINATION "
                     "[DESTINATION]]") +
           "\n";
  }
};

std::string unknownChecksum(const std::string& name) {
  if (HashKit::hashAlgorithmFromRawValue(name)) return {};
  return filled(translate("Terminal", "There is no checksum \"%1\"; choose xxh64, md5 or sha256."),
                {name});
}

void describeOffload(CLI::App& command, CommandLine::OffloadArguments& arguments) {
  command.formatter(
      std::make_shared<OffloadHelp>(dynamic_cast<const CLI::Formatter&>(*command.get_formatter())));
  const std::string folder = translate("Terminal", "FOLDER");
  const std::string text = translate("Terminal", "TEXT");
  command
      .add_option(translate("Terminal", "SOURCE"), arguments.source,
                  translate("Terminal", "The card, or any folder; it is only read"))
      ->type_name(folder)
      ->required();
  command
      .add_option(translate("Terminal", "DESTINATION"), arguments.destinations,
                  translate("Terminal", "One to three folders, best on drives of their own"))
      ->type_name(folder)
      ->required();
  command
      .add_option("--template", arguments.folderTemplate,
                  translate("Terminal",
                            "Folder made in each destination; may hold {date} {time} {card} "
                            "{camera} {project} and / for folders in folders"))
      ->type_name(text)
      ->capture_default_str();
  command
      .add_option("--project", arguments.project,
                  translate("Terminal", "Project name for {project}"))
      ->type_name(text);
  command
      .add_option_function<std::string>(
          "--checksum",
          [&arguments](const std::string& name) {
            arguments.checksum = HashKit::hashAlgorithmFromRawValue(name).value();
          },
          translate("Terminal",
                    "xxh64 (default), md5 or sha256; hash lists with sha256 are outside the ASC "
                    "MHL schema, so choose another for exchange"))
      ->type_name(translate("Terminal", "NAME"))
      ->check(CLI::Validator(unknownChecksum, "", "checksum"));
  command.add_flag("--read-once", arguments.readOnce,
                   translate("Terminal",
                             "Read the card only once; without this it is read a second time and "
                             "compared"));
  command.add_flag("--card-image", arguments.cardImage,
                   translate("Terminal",
                             "Also save an image of the whole card, deleted files included, on the "
                             "destination with the most free space"));
  command.add_flag("--eject", arguments.eject,
                   translate("Terminal", "Eject the card, but only once everything is verified"));
  command.add_flag("--json", arguments.json,
                   translate("Terminal",
                             "One JSON object per line on standard output; sentences on standard "
                             "error"));
  command.add_flag("--quiet", arguments.quiet,
                   translate("Terminal", "No progress, and no verdict when all is verified"));
  command.footer(translate(
      "Terminal",
      "Exit status: 0 every file is verified on every drive; 1 finished, but not everything is\n"
      "verified, something on the card could not be read, or a report, a hash list or the result\n"
      "could not be written; 2 wrong arguments; 3 could not start or was stopped by an error;\n"
      "130 stopped by Ctrl-C. Starting again picks up where it ended."));
}

// One sentence in our own voice; help and version are no errors.
int tellParseError(const CLI::App& program, const CLI::ParseError& error) {
  if (error.get_exit_code() == 0) {
    program.exit(error);
    return CommandLine::allVerified;
  }
  std::string sentence = CommandLine::parseErrorSentence(error);
  // What a check of ours says stands behind the name of the option.
  constexpr std::string_view kChecksum = "--checksum: ";
  if (sentence.starts_with(kChecksum) && dynamic_cast<const CLI::ValidationError*>(&error)) {
    sentence.erase(0, kChecksum.size());
  }
  if (!sentence.ends_with('.')) sentence += ".";
  CommandLine::printError(
      filled(translate("Terminal", "zephrimark: %1 See zephrimark --help."), {sentence}) + "\n");
  return CommandLine::wrongArguments;
}

// Nobody may take for a good end what he was not told.
int tellLostOutput(int status) {
  const int error = CommandLine::outputError();
  if (error == 0) return status;
  CommandLine::printError(
      filled(translate("Terminal",
                       "zephrimark: The result could not be written to standard output: %1."),
             {OffloadKit::shown(OffloadKit::Reason::ofSystem(error))}) +
      "\n");
  return status == CommandLine::allVerified ? CommandLine::notEverything : status;
}

}  // namespace

int main(int argc, char** argv) {
  PlatformKit::openMissingStandardStreams();
  PlatformKit::raiseOpenFilesLimit();
  // Another language needs letters that only UTF-8 has.
  if (PlatformKit::environmentIsUtf8()) Translations::useLanguage(Translations::languageOfUser());
  CLI::App program(
      translate("Terminal",
                "Copies camera cards to one, two or three drives and verifies every copy."),
      "zephrimark");
  CommandLine::translateHelp(program);
  program.set_version_flag("--version", "zephrimark " ZEPHRIMARK_VERSION,
                           translate("Terminal", "Display program version information and exit"));
  const auto addCommand = [&program](const char* name, const std::string& description) {
    CLI::App* command = program.add_subcommand(name, description);
    CommandLine::translateCommandHelp(*command);
    return command;
  };

  CommandLine::OffloadArguments arguments;
  CLI::App* offload = addCommand(
      "offload", translate("Terminal", "Copy a card or folder and read every copy back"));
  describeOffload(*offload, arguments);

  bool cardsAsJson = false;
  CLI::App* cards = addCommand("cards", translate("Terminal", "List the mounted cards and drives"));
  cards->add_flag("--json", cardsAsJson, translate("Terminal", "One JSON object per line"));

  bool allDisks = false;
  bool disksAsJson = false;
  CLI::App* disks = addCommand("disks", translate("Terminal", "List the disks that can be cards"));
  disks->add_flag("--all", allDisks, translate("Terminal", "Internal disks and disk images too"));
  disks->add_flag("--json", disksAsJson, translate("Terminal", "One JSON object per line"));

  try {
    program.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return tellParseError(program, error);
  }
  const auto machine = std::make_shared<Composition::Machine>();
  if (*offload) return tellLostOutput(CommandLine::runOffload(arguments, *machine));
  if (*cards) {
    return tellLostOutput(
        CommandLine::runCards(cardsAsJson, {machine, &machine->mountedVolumes()}));
  }
  if (*disks) {
    return tellLostOutput(CommandLine::runDisks(allDisks, disksAsJson, machine->disks()));
  }
  CommandLine::printError(program.help());
  return CommandLine::wrongArguments;
}
