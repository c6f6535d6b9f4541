#include "CommandLine/Table.h"

#include "TextKit/Unicode.h"

#include <algorithm>

namespace CommandLine {

std::string tableText(const std::vector<TableRow>& rows, const std::set<std::size_t>& numbers,
                      const std::string& indent) {
  std::vector<std::size_t> widths;
  for (const TableRow& row : rows) {
    widths.resize(row.size());
    for (std::size_t i = 0; i < row.size(); ++i) {
      widths[i] = std::max(widths[i], TextKit::cellWidth(row[i]));
    }
  }
  std::string text;
  for (const TableRow& row : rows) {
    text += indent;
    for (std::size_t i = 0; i + 1 < row.size(); ++i) {
      const std::string filling(widths[i] - TextKit::cellWidth(row[i]), ' ');
      text += (numbers.contains(i) ? filling + row[i] : row[i] + filling) + "  ";
    }
    text += row.back() + "\n";
  }
  return text;
}

std::string nameCell(const std::string& name) {
  constexpr std::size_t kLongest = 40;
  return TextKit::elidedInTheMiddle(TextKit::singleLineText(name), kLongest);
}

}  // namespace CommandLine
