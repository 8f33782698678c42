#include "tests/cli/documented_json.h"

#include <gtest/gtest.h>

#include <map>
#include <string_view>

#include "tests/support/file_content.h"

namespace darokleim::cli {
namespace {

struct Member {
  std::string type;  // "text", "integer or null"
  bool optional = false;
};

using Section = std::map<std::string, Member>;  // by path

// "`a[].b` | text, optional | …"
void ReadRow(std::string_view row, Section* section) {
  const auto name_begin = row.find('`') + 1;
  const auto name_end = row.find('`', name_begin);
  const auto type_begin = row.find("| ", name_end) + 2;
  std::string type(row.substr(type_begin, row.find(" |", type_begin) - type_begin));
  Member member;
  if (const auto comma = type.find(", optional"); comma != std::string::npos) {
    member.optional = true;
    type.resize(comma);
  }
  member.type = type;
  (*section)[std::string(row.substr(name_begin, name_end - name_begin))] = member;
}

std::map<std::string, Section> ReadDocumentation() {
  std::map<std::string, Section> sections;
  Section* current = nullptr;
  for (const std::string& line : test::ReadLines(DAROKLEIM_JSON_DOCUMENTATION)) {
    if (line.rfind("## ", 0) == 0) current = &sections[line.substr(3)];
    if (current != nullptr && line.rfind("| `", 0) == 0) ReadRow(line, current);
  }
  return sections;
}

std::string TypeOf(const Json::Value& value) {
  switch (value.type()) {
    case Json::nullValue:
      return "null";
    case Json::intValue:
    case Json::uintValue:
      return "integer";
    case Json::realValue:
      return "number";
    case Json::stringValue:
      return "text";
    case Json::booleanValue:
      return "boolean";
    case Json::arrayValue:
      return "array";
    case Json::objectValue:
      return "object";
  }
  return "";
}

bool IsOneOf(const std::string& type, const std::string& allowed) {
  std::size_t begin = 0;
  for (;;) {
    const auto end = allowed.find(" or ", begin);
    const std::string one = allowed.substr(begin, end - begin);
    if (type == one || (type == "integer" && one == "number")) return true;
    if (end == std::string::npos) return false;
    begin = end + 4;
  }
}

class Comparison {
 public:
  explicit Comparison(Section section) : section_(std::move(section)) {}

  void Object(const Json::Value& object, const std::string& prefix) {
    for (const std::string& name : object.getMemberNames()) Value(object[name], prefix + name);
    for (const auto& [path, member] : section_) {
      const bool is_direct =
          path.rfind(prefix, 0) == 0 && path.find_first_of(".[", prefix.size()) == std::string::npos;
      if (!is_direct || member.optional) continue;
      EXPECT_TRUE(object.isMember(path.substr(prefix.size()))) << path << " is missing";
    }
  }

 private:
  void Value(const Json::Value& value, const std::string& path) {
    const auto found = section_.find(path);
    if (found == section_.end()) {
      ADD_FAILURE() << path << " is not documented";
      return;
    }
    EXPECT_TRUE(IsOneOf(TypeOf(value), found->second.type)) << path << " is " << TypeOf(value);
    if (value.isObject()) Object(value, path + ".");
    if (!value.isArray()) return;
    for (const auto& element : value) Element(element, path + "[]");
  }

  // A list of plain values has a row of its own, `removed[]`.
  void Element(const Json::Value& element, const std::string& path) {
    if (element.isObject()) {
      Object(element, path + ".");
    } else {
      Value(element, path);
    }
  }

  Section section_;
};

}  // namespace

void ExpectDocumented(const std::string& section, const Json::Value& document) {
  const auto sections = ReadDocumentation();
  const auto found = sections.find(section);
  ASSERT_NE(found, sections.end()) << "docs/json.md has no section " << section;
  Section members = found->second;
  const bool is_a_line = section.find("--watch") != std::string::npos || section == "logcat";
  if (!is_a_line) members.insert(sections.at("errors").begin(), sections.at("errors").end());
  ASSERT_TRUE(document.isObject());
  Comparison(members).Object(document, "");
}

}  // namespace darokleim::cli
