#include "tests/phone/paths_document.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <stdexcept>

#include "tests/phone/phone_under_test.h"

namespace darokleim::test {

namespace {

constexpr char kDocument[] = DAROKLEIM_PATHS_DOCUMENT;

struct Span {
  size_t begin, end;
};

Span SpanOfTable(const std::string& document, const std::string& key) {
  const std::string mark = "<!-- " + key + " -->\n";
  const size_t at = document.find(mark);
  const size_t end = document.find("<!-- end -->", at);
  if (at == std::string::npos || end == std::string::npos) throw std::runtime_error("no place for " + key);
  return {at + mark.size(), end};
}

std::string Row(const std::vector<std::string>& cells) {
  std::string row = "|";
  for (const std::string& cell : cells) row += " " + cell + " |";
  return row + "\n";
}

}  // namespace

std::string RenderTable(const std::vector<std::string>& columns,
                        const std::vector<std::pair<std::string, std::vector<std::string>>>& rows) {
  std::vector<std::string> cells = {"function"};
  cells.insert(cells.end(), columns.begin(), columns.end());
  std::string table = "\n" + Row(cells) + Row(std::vector<std::string>(cells.size(), "---"));
  for (const auto& [title, results] : rows) {
    cells = {title};
    cells.insert(cells.end(), results.begin(), results.end());
    table += Row(cells);
  }
  return table + "\n";
}

std::string DocumentedTable(const std::string& key) {
  const std::string document = ReadFile(kDocument);
  const Span span = SpanOfTable(document, key);
  return document.substr(span.begin, span.end - span.begin);
}

void DocumentTable(const std::string& key, const std::string& table) {
  const int lock = open(kDocument, O_RDONLY | O_CLOEXEC);
  flock(lock, LOCK_EX);
  std::string document = ReadFile(kDocument);
  const Span span = SpanOfTable(document, key);
  WriteFile(kDocument, document.replace(span.begin, span.end - span.begin, table));
  close(lock);
}

}  // namespace darokleim::test
