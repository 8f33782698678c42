// The list of a split package's files that an application passes.
#ifndef DAROKLEIM_SRC_APPS_PACKAGE_FILES_H
#define DAROKLEIM_SRC_APPS_PACKAGE_FILES_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace darokleim::sdk {

// The elements of all arrays that are members of a JSON object, as text: members in the order of their
// names, elements in theirs. Members of other types are ignored; null at the top is an object without members.
//
// Nothing when the text is not such a document: it is not JSON, has another value at the top, is nested more than 500
// levels deep, or has an array or an object as an element.
std::optional<std::vector<std::string>> ReadPackageFiles(std::string_view json);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_APPS_PACKAGE_FILES_H
