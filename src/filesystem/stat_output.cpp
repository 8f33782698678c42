#include "src/filesystem/stat_output.h"

#include <algorithm>

#include "src/core/text.h"

namespace darokleim::sdk {
namespace {

// Removes the run of these characters from the front of text; false when there is none.
bool SkipRun(std::string_view* text, std::string_view characters) {
  const std::size_t end = std::min(text->find_first_not_of(characters), text->size());
  text->remove_prefix(end);
  return end > 0;
}

std::optional<unsigned long long> SizeInLine(std::string_view line) {
  constexpr std::string_view kLabel = "Size:";
  if (!SkipRun(&line, kWhiteSpace) || line.substr(0, kLabel.size()) != kLabel) return std::nullopt;
  line.remove_prefix(kLabel.size());
  if (!SkipRun(&line, kWhiteSpace)) return std::nullopt;
  const std::string_view number = line;
  if (!SkipRun(&line, "0123456789") || line.find_first_of("\r\n") != std::string_view::npos)
    return std::nullopt;
  return static_cast<unsigned long long>(LeadingInteger(number));
}

}  // namespace

std::optional<unsigned long long> SizeInStatOutput(std::string_view output) {
  std::optional<unsigned long long> size;
  ForEachPiece(output, "\r\n", [&](std::string_view line) {
    size = SizeInLine(line);
    return !size;
  });
  return size;
}

}  // namespace darokleim::sdk
