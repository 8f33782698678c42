#include "channel/settings.h"

#include <cstdlib>
#include <mutex>
#include <string_view>
#include <utility>

namespace darokleim::channel {
namespace {

std::mutex kept_mutex;
std::optional<Settings> kept;

}  // namespace

Assist AssistFromEnvironment() {
  const char* const wish = getenv("DAROKLEIM_CHANNEL_ASSIST");
  return wish != nullptr && std::string_view(wish) == "1" ? Assist::kOn : Assist::kOff;
}

void KeepSettings(Settings settings) {
  const std::lock_guard lock(kept_mutex);
  kept = std::move(settings);
}

std::optional<Settings> KeptSettings() {
  const std::lock_guard lock(kept_mutex);
  return kept;
}

}  // namespace darokleim::channel
