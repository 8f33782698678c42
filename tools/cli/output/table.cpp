#include "tools/cli/output/table.h"

#include <algorithm>
#include <string_view>

namespace darokleim::cli {
namespace {

constexpr std::size_t kGap = 2;  // spaces between two columns

constexpr char kEscape = '\x1b';

bool StartsCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xc0) != 0x80;
}

// Colours, "ESC [ … m", take no place.
std::size_t Width(std::string_view cell) {
  std::size_t width = 0;
  for (std::size_t i = 0; i < cell.size(); ++i) {
    const auto end = cell[i] == kEscape ? cell.find('m', i) : std::string_view::npos;
    if (end != std::string_view::npos) {
      i = end;
    } else if (StartsCharacter(cell[i])) {
      ++width;
    }
  }
  return width;
}

}  // namespace

std::string Table::Text() const {
  std::vector<std::size_t> widths;
  for (const auto& row : rows_) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t column = 0; column < row.size(); ++column) {
      widths[column] = std::max(widths[column], Width(row[column]));
    }
  }
  std::string text;
  for (const auto& row : rows_) {
    std::size_t spaces = 0;  // to write before the next cell that is not empty
    for (std::size_t column = 0; column < row.size(); ++column) {
      const std::size_t width = Width(row[column]);
      if (width > 0) {
        text.append(spaces, ' ').append(row[column]);
        spaces = 0;
      }
      spaces += widths[column] - width + kGap;
    }
    text += '\n';
  }
  return text;
}

}  // namespace darokleim::cli
