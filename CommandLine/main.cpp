#include "CommandLine/CardsCommand.h"
#include "CommandLine/DisksCommand.h"
#include "CommandLine/ExitStatus.h"
#include "CommandLine/OffloadCommand.h"
#include "CommandLine/Output.h"
#include "CommandLine/Services.h"
#include "HashKit/HashAlgorithm.h"
#include "PlatformKit/Posix/OpenFiles.h"
#include "PlatformKit/Posix/Terminal.h"

#include <memory>

#include <CLI/CLI.hpp>

namespace {

// The parser's own line of usage has a notation of its own for lists.
class OffloadHelp final : public CLI::Formatter {
 public:
  std::string make_usage(const CLI::App* /*command*/, std::string /*name*/) const override {
    return "Usage: zephrimark offload [OPTIONS] SOURCE DESTINATION [DESTINATION [DESTINATION]]\n";
  }
};

std::string unknownChecksum(const std::string& name) {
  if (HashKit::hashAlgorithmFromRawValue(name)) return {};
  return "There is no checksum \"" + name + "\"; choose xxh64, md5 or sha256.";
}

void describeOffload(CLI::App& command, CommandLine::OffloadArguments& arguments) {
  command.formatter(std::make_shared<OffloadHelp>());
  command.add_option("SOURCE", arguments.source, "The card, or any folder; it is only read")
      ->type_name("FOLDER")
      ->required();
  command
      .add_option("DESTINATION", arguments.destinations,
                  "One to three folders, best on drives of their own")
      ->type_name("FOLDER")
      ->required();
  command
      .add_option("--template", arguments.folderTemplate,
                  "Folder made in each destination; may hold {date} {time} {card} {camera} "
                  "{project} and / for folders in folders")
      ->type_name("TEXT")
      ->capture_default_str();
  command.add_option("--project", arguments.project, "Project name for {project}")
      ->type_name("TEXT");
  command
      .add_option_function<std::string>(
          "--checksum",
          [&arguments](const std::string& name) {
            arguments.checksum = HashKit::hashAlgorithmFromRawValue(name).value();
          },
          "xxh64 (default), md5 or sha256; hash lists with sha256 are outside the ASC MHL schema, "
          "so choose another for exchange")
      ->type_name("NAME")
      ->check(CLI::Validator(unknownChecksum, "", "checksum"));
  command.add_flag("--read-once", arguments.readOnce,
                   "Read the card only once; without this it is read a second time and compared");
  command.add_flag("--card-image", arguments.cardImage,
                   "Also save an image of the whole card, deleted files included, on the "
                   "destination with the most free space");
  command.add_flag("--eject", arguments.eject,
                   "Eject the card, but only once everything is verified");
  command.add_flag("--json", arguments.json,
                   "One JSON object per line on standard output; sentences on standard error");
  command.add_flag("--quiet", arguments.quiet, "No progress, and no verdict when all is verified");
  command.footer(
      "Exit status: 0 every file is verified on every drive; 1 finished, but not everything is\n"
      "verified or something on the card could not be read; 2 wrong arguments; 3 could not start\n"
      "or was stopped by an error; 130 stopped by Ctrl-C. Starting again picks up where it ended.");
}

// One sentence in our own voice; help and version are no errors.
int tellParseError(const CLI::App& program, const CLI::ParseError& error) {
  if (error.get_exit_code() == 0) {
    program.exit(error);
    return CommandLine::allVerified;
  }
  std::string sentence = error.what();
  const std::size_t checksum = sentence.find("There is no checksum");
  if (checksum != std::string::npos) sentence.erase(0, checksum);
  if (!sentence.ends_with('.')) sentence += ".";
  CommandLine::printError("zephrimark: " + sentence + " See zephrimark --help.\n");
  return CommandLine::wrongArguments;
}

}  // namespace

int main(int argc, char** argv) {
  PlatformKit::openMissingStandardStreams();
  PlatformKit::raiseOpenFilesLimit();
  CLI::App program("Copies camera cards to one, two or three drives and verifies every copy.",
                   "zephrimark");
  program.set_version_flag("--version", "zephrimark " ZEPHRIMARK_VERSION);

  CommandLine::OffloadArguments arguments;
  CLI::App* offload =
      program.add_subcommand("offload", "Copy a card or folder and read every copy back");
  describeOffload(*offload, arguments);

  bool cardsAsJson = false;
  CLI::App* cards = program.add_subcommand("cards", "List the mounted cards and drives");
  cards->add_flag("--json", cardsAsJson, "One JSON object per line");

  bool allDisks = false;
  bool disksAsJson = false;
  CLI::App* disks = program.add_subcommand("disks", "List the disks that can be cards");
  disks->add_flag("--all", allDisks, "Internal disks and disk images too");
  disks->add_flag("--json", disksAsJson, "One JSON object per line");

  try {
    program.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return tellParseError(program, error);
  }
  CommandLine::Services services;
  if (*offload) return CommandLine::runOffload(arguments, services);
  if (*cards) return CommandLine::runCards(cardsAsJson, services.mountedVolumes);
  if (*disks) return CommandLine::runDisks(allDisks, disksAsJson, services.physicalDisks);
  CommandLine::printError(program.help());
  return CommandLine::wrongArguments;
}
