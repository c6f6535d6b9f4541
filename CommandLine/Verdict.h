#pragma once

#include "OffloadKit/Records/OffloadResult.h"

#include <string>

namespace CommandLine {

/// The verdict on a run for people: a headline, its figures, a line per drive, the files that are
/// not verified everywhere and what could not be read from the card. Lines end in line feeds.
/// `onStandardError`: the stream it is meant for, which decides about colour.
std::string verdict(const OffloadKit::OffloadResult& result, bool onStandardError);

}  // namespace CommandLine
