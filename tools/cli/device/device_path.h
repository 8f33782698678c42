#ifndef DAROKLEIM_TOOLS_CLI_DEVICE_DEVICE_PATH_H
#define DAROKLEIM_TOOLS_CLI_DEVICE_DEVICE_PATH_H

#include <string>
#include <string_view>

namespace darokleim::cli {

std::string WithSingleSlashes(std::string_view path);

// A path on the device: absolute, bytes in no particular encoding, without slashes at its end or several in a row.
class DevicePath {
 public:
  // Throws ToolError for a path that is not absolute or that the library cannot carry to the device.
  explicit DevicePath(std::string_view path);
  DevicePath() : text_("/") {}

  const std::string& text() const { return text_; }
  const char* c_str() const { return text_.c_str(); }

  // Whether it was written with a slash at its end, so that only a folder can be meant.
  bool names_a_folder() const { return names_a_folder_; }
  bool IsRoot() const { return text_ == "/"; }
  // What follows the last slash; empty for the root.
  std::string Name() const { return text_.substr(text_.rfind('/') + 1); }
  DevicePath Parent() const;
  DevicePath Child(std::string_view name) const;

 private:
  std::string text_;
  bool names_a_folder_ = false;
};

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_DEVICE_DEVICE_PATH_H
