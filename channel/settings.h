// How the channel runs commands: what was given when it was initialised, and what the environment said then.
#ifndef DAROKLEIM_CHANNEL_SETTINGS_H
#define DAROKLEIM_CHANNEL_SETTINGS_H

#include <chrono>
#include <optional>
#include <string>

#include "channel/command/command.h"

namespace darokleim::channel {

// Each mode includes the one before it.
enum class Mode {
  kPlain,   // adb runs, nothing is changed
  kAssist,  // shell commands get paths and line breaks as the SDK means them
  kDirect,  // commands of known forms go to the adb server without adb
};

struct Settings {
  std::string adb_path;
  Mode mode = Mode::kPlain;
  std::optional<std::chrono::milliseconds> time_limit = std::nullopt;  // of one command; streams have none

  bool operator==(const Settings&) const = default;

  Assist assist() const { return mode == Mode::kPlain ? Assist::kOff : Assist::kOn; }
};

// The mode that DAROKLEIM_CHANNEL names. Without that variable, DAROKLEIM_CHANNEL_ASSIST=1 is kAssist. An unknown
// name is kPlain and a line in the log.
Mode ModeFromEnvironment();

// The limit that DAROKLEIM_CHANNEL_TIMEOUT sets, in seconds, perhaps with a fraction. 0 is none. A value that is not a
// number, or not between 0 and a million, is none and a line in the log.
std::optional<std::chrono::milliseconds> TimeLimitFromEnvironment();

// Both may be called at any time from any thread, also in a child forked while another thread calls one. A later initialisation applies to the commands after it.
void SetSettings(Settings settings);
std::optional<Settings> CurrentSettings();

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_SETTINGS_H
