#ifndef DAROKLEIM_TOOLS_CLI_DEVICE_PATH_H
#define DAROKLEIM_TOOLS_CLI_DEVICE_PATH_H

#include <string>
#include <string_view>

namespace darokleim::cli {

std::string WithSingleSlashes(std::string_view path);

// A path on the device: absolute, bytes in no promised encoding, without slashes at its end or
// several in a row.
class DevicePath {
 public:
  // Throws ToolError for a path that is not absolute or that the library cannot carry to the device.
  explicit DevicePath(std::string_view path);

  const std::string& text() const { return text_; }
  const char* c_str() const { return text_.c_str(); }

  bool IsRoot() const { return text_ == "/"; }
  // What follows the last slash; empty for the root.
  std::string Name() const { return text_.substr(text_.rfind('/') + 1); }
  DevicePath Parent() const;
  DevicePath Child(std::string_view name) const;

 private:
  std::string text_;
};

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_DEVICE_PATH_H
