#pragma once

namespace CommandLine {

/// What the program's exit status says.
enum ExitStatus : int {
  allVerified = 0,  ///< every file is verified on every drive
  /// Finished, but not everything is verified, not all of the card was read, a record is missing,
  /// or the result could not be written to standard output.
  notEverything = 1,
  wrongArguments = 2,       ///< nothing was done
  stoppedByError = 3,       ///< could not start, or was stopped by an error
  stoppedByInterrupt = 128  ///< plus the signal's number: 130 after Ctrl-C
};

}  // namespace CommandLine
