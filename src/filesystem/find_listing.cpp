#include "src/filesystem/find_listing.h"

#include <string>
#include <string_view>

#include "src/core/text.h"

using namespace darokleim::sdk;

namespace {

// Turning every CR CR LF into LF and then every CR LF, as the line ends of phones were first read, takes
// up to three carriage returns from the end of a line and leaves what is before them.
std::string_view WithoutLineEnd(std::string_view line) {
  constexpr int kMostReturns = 3;
  for (int i = 0; i < kMostReturns && !line.empty() && line.back() == '\r'; ++i) line.remove_suffix(1);
  return line;
}

}  // namespace

bool DecodeFindOut(const char* out, int len, std::list<FileInfo>* files) {
  std::string_view rest = TextOf(out, len);
  bool any_line = false;
  while (!rest.empty()) {
    const std::size_t end = rest.find('\n');
    // Carriage returns are part of a last line that no LF ends.
    const std::string_view line = end == std::string_view::npos ? rest : WithoutLineEnd(rest.substr(0, end));
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    if (line.empty()) continue;
    any_line = true;
    if (line.front() == '/') files->push_back({0, 0, std::string(line), "", 0});
  }
  return any_line;
}
