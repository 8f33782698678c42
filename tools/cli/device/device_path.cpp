#include "tools/cli/device/device_path.h"

#include "tools/cli/device/argument_text.h"
#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

constexpr std::size_t kLongestPath = 4095;  // bytes; PATH_MAX of Android's kernels without its final zero

}  // namespace

std::string WithSingleSlashes(std::string_view path) {
  std::string text;
  for (const char c : path) {
    if (c != '/' || text.empty() || text.back() != '/') text += c;
  }
  return text;
}

DevicePath::DevicePath(std::string_view path) : text_(WithSingleSlashes(path)) {
  if (text_.empty() || text_.front() != '/') {
    throw ToolError("\"" + text_ +
                    "\" is not a path on the device: it must begin with /, for example /sdcard/Download.");
  }
  names_a_folder_ = text_.back() == '/';
  while (text_.size() > 1 && text_.back() == '/') text_.pop_back();
  if (text_.size() > kLongestPath) {
    throw ToolError("a path of " + std::to_string(text_.size()) + " bytes is too long: devices allow " +
                    std::to_string(kLongestPath) + ".");
  }
  CheckCanBeCarried(text_);
}

DevicePath DevicePath::Parent() const {
  const auto slash = text_.rfind('/');
  return DevicePath(slash == 0 ? "/" : std::string_view(text_).substr(0, slash));
}

DevicePath DevicePath::Child(std::string_view name) const {
  return DevicePath((IsRoot() ? "" : text_) + "/" + std::string(name));
}

}  // namespace darokleim::cli
