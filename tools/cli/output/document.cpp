#include "tools/cli/output/document.h"

#include "tools/cli/output/json_text.h"

namespace darokleim::cli {

void Document::BeginMember(std::string_view name) {
  EndList();
  output_.Append((has_members_ ? ",\n" : "{") + JsonString(name) + ": ");
  has_members_ = true;
}

void Document::BeginList(std::string_view name) {
  BeginMember(name);
  output_.Append("[");
  in_list_ = true;
  list_has_elements_ = false;
}

void Document::Add(std::string_view json) {
  output_.Append(list_has_elements_ ? ",\n" : "\n");
  output_.Append(json);
  list_has_elements_ = true;
}

void Document::EndList() {
  if (in_list_) output_.Append(list_has_elements_ ? "\n]" : "]");
  in_list_ = false;
}

void Document::Member(std::string_view name, std::string_view json) {
  BeginMember(name);
  output_.Append(json);
}

void Document::End(const std::vector<std::string>& errors) {
  BeginList("errors");
  for (const auto& error : errors) Add(error);
  EndList();
  output_.Append("}\n");
}

}  // namespace darokleim::cli
