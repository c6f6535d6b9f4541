#include "CommandLine/ParserTexts.h"

#include "TextKit/Translation.h"

#include <array>

#include <CLI/CLI.hpp>

namespace CommandLine {
namespace {

using TextKit::filled;
using TextKit::translatable;
using TextKit::translate;

// What the parser says of the arguments that this program takes.
constexpr std::array kParseErrors = {
    translatable("Terminal", "%1 is required"),
    translatable("Terminal", "The following argument was not expected: %1"),
    translatable("Terminal", "The following arguments were not expected: %1"),
    translatable("Terminal", "%1: %2 required %3 missing"),
    translatable("Terminal", "%1: Should be true/false or a number"),
    translatable("Terminal", "%1: too many inputs for a flag"),
};

}  // namespace

void translateHelp(CLI::App& program) {
  const auto formatter = program.get_formatter();
  formatter->label("Usage", translate("Terminal", "Usage"));
  formatter->label("OPTIONS", translate("Terminal", "OPTIONS"));
  formatter->label("SUBCOMMAND", translate("Terminal", "SUBCOMMAND"));
  formatter->label("Positionals", translate("Terminal", "Positionals"));
  formatter->label("REQUIRED", translate("Terminal", "REQUIRED"));
  program.set_help_flag("-h,--help", translate("Terminal", "Print this help message and exit"));
  program.option_defaults()->group(translate("Terminal", "Options"));
  program.get_help_ptr()->group(translate("Terminal", "Options"));
}

void translateCommandHelp(CLI::App& command) {
  command.group(translate("Terminal", "Subcommands"));
  command.get_help_ptr()->group(translate("Terminal", "Options"));
}

std::string parseErrorSentence(const CLI::ParseError& error) {
  std::string sentence = error.what();
  for (const char* text : kParseErrors) {
    auto values = TextKit::valuesIn(sentence, text);
    if (!values) continue;
    values->resize(3);
    return filled(translate("Terminal", text), {values->at(0), values->at(1), values->at(2)});
  }
  return sentence;
}

}  // namespace CommandLine
