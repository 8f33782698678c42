// One call of a function of the library, and what it left behind.
#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_SDK_CALL_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_SDK_CALL_H

#include <json/value.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/cli/commands/sdk/function.h"

namespace darokleim::cli {

struct CallResult {
  Returned returned;
  bool succeeded = false;
  std::optional<int> stream_status;  // what the stream that the call started ended with
  // The outputs in the order of the parameters: a number, true or false, a text, or null for a null pointer.
  std::vector<std::pair<std::string, Json::Value>> outputs;
  double milliseconds = 0;  // of the call itself
};

struct CallSettings {
  std::string serial;
  int buffer_size = kUncheckedBufferSize;
  // Gets the pieces of a stream as they arrive, on a thread of the library; otherwise they are an output.
  std::function<void(std::string_view piece)> on_piece;
};

// Calls the function with the words in `values`, which has an element for each parameter. Returns when the call has
// returned, for a stream when it has ended: a signal to the tool and --timeout set the cancel flag.
CallResult CallFunction(const SdkFunction& function, std::vector<Value> values, const CallSettings& settings);

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_SDK_CALL_H
