#pragma once

#include <string>

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

namespace CommandLine {

/// Gives the parser's own words in the help of the program the user's language, and those of the
/// commands that are added to it from then on. Called before options are added.
void translateHelp(CLI::App& program);

/// Does the same for a command, once it was added.
void translateCommandHelp(CLI::App& command);

/// Why the arguments could not be read, as a sentence in the user's language.
std::string parseErrorSentence(const CLI::ParseError& error);

}  // namespace CommandLine
