#include "channel/settings.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

#include "channel/channel_log.h"

namespace darokleim::channel {
namespace {

// Earlier settings are kept until the library is unloaded, since another thread may still read them. There is no mutex,
// which a child that is forked at the wrong moment would find locked.
class SettingsHistory {
 public:
  ~SettingsHistory() {
    for (const Entry* entry = last_.exchange(nullptr); entry != nullptr;) {
      const std::unique_ptr<const Entry> owner(entry);
      entry = entry->earlier;
    }
  }

  void Add(Settings settings) {
    const Entry* const last = last_.load();
    if (last != nullptr && last->settings == settings) return;
    Entry* const added = new Entry{std::move(settings), last};
    while (!last_.compare_exchange_weak(added->earlier, added)) {
    }
  }

  const Settings* last() const {
    const Entry* const last = last_.load();
    return last == nullptr ? nullptr : &last->settings;
  }

 private:
  struct Entry {
    Settings settings;
    const Entry* earlier;
  };

  std::atomic<const Entry*> last_ = nullptr;
};

SettingsHistory history;

bool HasOlderAssistSwitch() {
  const char* const value = getenv("DAROKLEIM_CHANNEL_ASSIST");
  return value != nullptr && std::string_view(value) == "1";
}

// Digits, perhaps with a point and more of them: whatever the locale has as a point. What is less than a millisecond
// counts as one.
std::optional<std::chrono::milliseconds> ParseSeconds(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789";
  constexpr long long kMostSeconds = 1'000'000;
  const std::string_view whole = text.substr(0, text.find('.'));
  const std::string_view fraction = text.substr(std::min(whole.size() + 1, text.size()));
  if (whole.empty() || text.back() == '.') return std::nullopt;
  if ((std::string(whole).append(fraction)).find_first_not_of(kDigits) != std::string::npos)
    return std::nullopt;

  long long seconds = 0;
  for (const char digit : whole) {
    seconds = seconds * 10 + (digit - '0');
    if (seconds > kMostSeconds) return std::nullopt;
  }
  long long milliseconds = 0;
  for (size_t i = 0; i < 3; ++i)
    milliseconds = milliseconds * 10 + (i < fraction.size() ? fraction[i] - '0' : 0);
  const bool has_more = fraction.find_first_not_of('0', 3) != std::string_view::npos;
  return std::chrono::milliseconds(seconds * 1000 + milliseconds + (has_more ? 1 : 0));
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

std::optional<std::chrono::milliseconds> TimeLimitFromEnvironment() {
  const char* const value = getenv("DAROKLEIM_CHANNEL_TIMEOUT");
  if (value == nullptr || *value == '\0') return std::nullopt;
  const auto limit = ParseSeconds(value);
  if (!limit)
    LogIgnoredVariable("DAROKLEIM_CHANNEL_TIMEOUT", value,
                       "it is not a number of seconds, for example 30 or 0.5");
  return limit && limit->count() > 0 ? limit : std::nullopt;
}

void SetSettings(Settings settings) {
  history.Add(std::move(settings));
}

std::optional<Settings> CurrentSettings() {
  const Settings* const last = history.last();
  return last == nullptr ? std::nullopt : std::optional(*last);
}

}  // namespace darokleim::channel
