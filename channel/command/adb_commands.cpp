#include "channel/command/adb_commands.h"

namespace darokleim::channel {

OperandForm FindAdbOperands(std::string_view command) {
  constexpr struct {
    std::string_view name;
    OperandCount paths;
  } kCommandsWithPaths[] = {
      {"backup", OperandCount::kOne}, {"install-multiple", OperandCount::kMany},
      {"ls", OperandCount::kOne},     {"pull", OperandCount::kTwo},
      {"push", OperandCount::kTwo},   {"restore", OperandCount::kOne},
  };
  for (const auto& known : kCommandsWithPaths) {
    if (known.name == command) return {known.paths, kDoubleQuotes};
  }
  return {};
}

}  // namespace darokleim::channel
