// The tool's own standard output.
#ifndef DAROKLEIM_TOOLS_CLI_OUTPUT_H
#define DAROKLEIM_TOOLS_CLI_OUTPUT_H

#include <json/value.h>

#include <string_view>

namespace darokleim {

class Output {
 public:
  // Does not own the descriptor.
  explicit Output(int descriptor) : descriptor_(descriptor) {}

  // Hands the bytes to the system before it returns. Throws when they cannot be written.
  void Write(std::string_view text);

  // The document, indented, and a line end.
  void WriteJson(const Json::Value& document);

 private:
  int descriptor_;
};

}  // namespace darokleim

#endif  // DAROKLEIM_TOOLS_CLI_OUTPUT_H
