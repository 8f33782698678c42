// The files of a split package, as applications list them.
#ifndef DAROKLEIM_SRC_APPS_PACKAGE_FILES_H
#define DAROKLEIM_SRC_APPS_PACKAGE_FILES_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace darokleim::sdk {

// The elements of all arrays that are members of a JSON object, as text: members in the order of their
// names, elements in theirs. Members of other types are ignored; null stands for an object without members.
//
// Nothing when the text is no such document: no JSON, another value at the top, nested more than 500
// levels deep, or an element that is an array or an object.
std::optional<std::vector<std::string>> ReadPackageFiles(std::string_view json);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_APPS_PACKAGE_FILES_H
