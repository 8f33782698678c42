#ifndef DAROKLEIM_TESTS_PHONE_PATHS_DOCUMENT_H
#define DAROKLEIM_TESTS_PHONE_PATHS_DOCUMENT_H

#include <string>
#include <vector>

namespace darokleim::test {

// A table of docs/paths.md, as text: a row for each function, a column for each name.
std::string RenderTable(const std::vector<std::string>& columns,
                        const std::vector<std::pair<std::string, std::vector<std::string>>>& rows);

// The text between the lines "<!-- KEY -->" and "<!-- end -->" of docs/paths.md.
std::string DocumentedTable(const std::string& key);
// Puts another text there. Several processes may do so at the same time.
void DocumentTable(const std::string& key, const std::string& table);

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_PHONE_PATHS_DOCUMENT_H
