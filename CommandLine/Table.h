#pragma once

#include <set>
#include <string>
#include <vector>

namespace CommandLine {

using TableRow = std::vector<std::string>;

/// The rows, which have the same number of cells, as lines with aligned columns; the columns in
/// `numbers` end at one edge, all others begin at one. Each line starts with `indent`. Any thread.
std::string tableText(const std::vector<TableRow>& rows, const std::set<std::size_t>& numbers,
                      const std::string& indent = "");

/// A name that came from outside, fit for a cell: on one line, and its middle left out when it is
/// long. Any thread.
std::string nameCell(const std::string& name);

}  // namespace CommandLine
