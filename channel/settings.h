// What the channel was told when it was initialised.
#ifndef DAROKLEIM_CHANNEL_SETTINGS_H
#define DAROKLEIM_CHANNEL_SETTINGS_H

#include <optional>
#include <string>

#include "channel/command/command.h"

namespace darokleim::channel {

struct Settings {
  std::string adb_path;
  Assist assist = Assist::kOff;
};

// The assist as the environment asks for it: DAROKLEIM_CHANNEL_ASSIST=1.
Assist AssistFromEnvironment();

// Both may be called at any time from any thread. A later initialisation counts for the commands after it.
void KeepSettings(Settings settings);
std::optional<Settings> KeptSettings();

}  // namespace darokleim::channel

#endif  // DAROKLEIM_CHANNEL_SETTINGS_H
