#include "channel/settings.h"

#include <cstdlib>
#include <mutex>
#include <string_view>
#include <utility>

#include "channel/channel_log.h"

namespace darokleim::channel {
namespace {

std::mutex current_mutex;
std::optional<Settings> current;

bool HasOlderAssistSwitch() {
  const char* const value = getenv("DAROKLEIM_CHANNEL_ASSIST");
  return value != nullptr && std::string_view(value) == "1";
}

}  // namespace

Mode ModeFromEnvironment() {
  const char* const value = getenv("DAROKLEIM_CHANNEL");
  if (value == nullptr || *value == '\0') return HasOlderAssistSwitch() ? Mode::kAssist : Mode::kPlain;
  const std::string_view name = value;
  if (name == "plain") return Mode::kPlain;
  if (name == "assist") return Mode::kAssist;
  if (name == "direct") return Mode::kDirect;
  LogIgnoredVariable("DAROKLEIM_CHANNEL", value, "it is not plain, assist or direct; plain is used");
  return Mode::kPlain;
}

void SetSettings(Settings settings) {
  const std::lock_guard lock(current_mutex);
  current = std::move(settings);
}

std::optional<Settings> CurrentSettings() {
  const std::lock_guard lock(current_mutex);
  return current;
}

}  // namespace darokleim::channel
