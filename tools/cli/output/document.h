#ifndef DAROKLEIM_TOOLS_CLI_OUTPUT_DOCUMENT_H
#define DAROKLEIM_TOOLS_CLI_OUTPUT_DOCUMENT_H

#include <string>
#include <string_view>
#include <vector>

#include "tools/cli/output/output.h"

namespace darokleim::cli {

// The one JSON document that a command prints with --json: an object whose last member, "errors", lists what failed. It is
// written while it is made, an element of a list on a line, so that a long one needs no memory.
class Document {
 public:
  explicit Document(Output& output) : output_(output) {}

  // A list, to which the elements that follow are added.
  void BeginList(std::string_view name);
  void Add(std::string_view json);

  void Member(std::string_view name, std::string_view json);

  // Once, last.
  void End(const std::vector<std::string>& errors);

 private:
  void BeginMember(std::string_view name);
  void EndList();

  Output& output_;
  bool has_members_ = false;
  bool in_list_ = false;
  bool list_has_elements_ = false;
};

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_OUTPUT_DOCUMENT_H
