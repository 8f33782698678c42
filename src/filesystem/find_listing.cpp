#include "src/filesystem/find_listing.h"

#include <string>
#include <string_view>

#include "src/core/text.h"

using namespace darokleim::sdk;

namespace {

// Removes up to three carriage returns from the end of a line: callers rely on the result of replacing every CR CR LF
// by LF and then every CR LF by LF.
std::string_view WithoutReturns(std::string_view line) {
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
    // A last line without LF keeps its carriage returns.
    const std::string_view line = end == std::string_view::npos ? rest : WithoutReturns(rest.substr(0, end));
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    if (line.empty()) continue;
    any_line = true;
    if (line.front() == '/') files->push_back({0, 0, std::string(line), "", 0});
  }
  return any_line;
}
