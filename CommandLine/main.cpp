#include "CommandLine/ExitStatus.h"
#include "CommandLine/OffloadCommand.h"
#include "CommandLine/Output.h"
#include "HashKit/HashAlgorithm.h"
#include "PlatformKit/Linux/LinuxFileSystem.h"
#include "PlatformKit/Linux/LinuxVolumes.h"
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

void describeOffload(CLI::App& command, CommandLine::OffloadArguments& arguments) {
  command.formatter(std::make_shared<OffloadHelp>());
  command.add_option("SOURCE", arguments.source, "The card, or any folder; it is only read")
      ->type_name("FOLDER")
      ->required();
  command
      .add_option("DESTINATION", arguments.destinations,
                  "One to three folders, best on drives of their own")
      ->required()
      ->type_name("FOLDER")
      ->expected(1, 3);
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
          "Checksum for every comparison (default: xxh64)")
      ->type_name("NAME")
      ->check(CLI::IsMember({"xxh64", "md5", "sha256"}));
  command.add_flag("--read-once", arguments.readOnce,
                   "Read the card only once; without this it is read a second time and compared");
  command.add_flag("--json", arguments.json,
                   "One JSON object per line on standard output; sentences on standard error");
  command.add_flag("--quiet", arguments.quiet, "No progress, and no verdict when all is verified");
  command.footer(
      "Exit status: 0 every file is verified on every drive; 1 finished, but not everything is\n"
      "verified or something on the card could not be read; 2 wrong arguments; 3 could not start\n"
      "or was stopped by an error; 130 stopped by Ctrl-C. Starting again picks up where it ended.");
}

}  // namespace

int main(int argc, char** argv) {
  PlatformKit::openMissingStandardStreams();
  PlatformKit::LinuxFileSystem fileSystem;
  PlatformKit::LinuxVolumes volumes;
  const PlatformKit::SystemClock clock;

  CLI::App program("Copies camera cards to one, two or three drives and verifies every copy.",
                   "zephrimark");
  program.set_version_flag("--version", "zephrimark " ZEPHRIMARK_VERSION);
  program.require_subcommand(1);
  CommandLine::OffloadArguments arguments;
  CLI::App* offload =
      program.add_subcommand("offload", "Copy a card or folder and read every copy back");
  describeOffload(*offload, arguments);
  try {
    program.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    // CLI11 has error numbers of its own; help and version are no errors.
    return program.exit(error) == 0 ? CommandLine::allVerified : CommandLine::wrongArguments;
  }
  return CommandLine::runOffload(arguments, {fileSystem, volumes, clock});
}
