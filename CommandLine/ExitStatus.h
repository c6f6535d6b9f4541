#pragma once

namespace CommandLine {

/// What the program's exit status says.
enum ExitStatus : int {
  allVerified = 0,  ///< the verdict is good
  /// Finished, but the verdict is not good, or the result could not be written to standard output.
  notEverything = 1,
  wrongArguments = 2,       ///< nothing was done
  stoppedByError = 3,       ///< could not start, or was stopped by an error
  stoppedByInterrupt = 128  ///< plus the signal's number: 130 after Ctrl-C
};

}  // namespace CommandLine
