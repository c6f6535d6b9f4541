#pragma once

#include "OffloadKit/Records/Verdict.h"

#include <string>

namespace CommandLine {

/// The verdict on a run, in words: a headline, its figures, a line per drive, the files that are
/// not verified everywhere and what could not be read from the card. Lines end in line feeds.
/// `onStandardError`: the stream it is meant for, which decides about colour.
std::string verdictText(const OffloadKit::OffloadResult& result, const OffloadKit::Verdict& verdict,
                        bool onStandardError);

}  // namespace CommandLine
