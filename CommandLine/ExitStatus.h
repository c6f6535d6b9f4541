#pragma once

namespace CommandLine {

/// What the program's exit status says.
enum ExitStatus : int {
  allVerified = 0,    ///< every file is verified on every drive
  notEverything = 1,  ///< finished, but not everything is verified, or not all of the card was read
  wrongArguments = 2,       ///< nothing was done
  stoppedByError = 3,       ///< could not start, or was stopped by an error
  stoppedByInterrupt = 128  ///< plus the signal's number: 130 after Ctrl-C
};

}  // namespace CommandLine
