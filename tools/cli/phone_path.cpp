#include "tools/cli/phone_path.h"

#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

std::string SingleSlashes(std::string_view path) {
  std::string text;
  for (const char c : path) {
    if (c != '/' || text.empty() || text.back() != '/') text += c;
  }
  return text;
}

}  // namespace

PhonePath PhonePath::Parse(const std::string& word) {
  PhonePath path;
  path.text = SingleSlashes(word);
  if (path.text.empty() || path.text.front() != '/') {
    throw UsageError("\"" + word +
                     "\" is not a path on the device: it must begin with /, for example /sdcard/Download.");
  }
  if (path.text.ends_with("/.")) {
    path.names_its_content = true;
    path.text.pop_back();
  }
  path.names_a_folder = path.text.back() == '/';
  while (path.text.size() > 1 && path.text.back() == '/') path.text.pop_back();
  return path;
}

std::string PhonePath::Child(std::string_view name) const {
  return (IsRoot() ? "/" : text + "/").append(name);
}

}  // namespace darokleim::cli
