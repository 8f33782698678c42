#ifndef DAROKLEIM_TOOLS_PHONE_SERVER_PHONE_OPTIONS_H
#define DAROKLEIM_TOOLS_PHONE_SERVER_PHONE_OPTIONS_H

#include <string>
#include <vector>

#include "tools/phone/common/faults.h"
#include "tools/phone/common/key_values.h"
#include "tools/phone/server/connection_state.h"

namespace darokleim::phone {

enum class Generation {
  kLegacy,  // as Android 6: one stream through a terminal, no exit status, first form of the sync messages
  kModern,  // as Android 13: exit status, two streams, second form of the sync messages
};

// One phone as the user asked for it.
struct PhoneOptions {
  std::string serial;
  ConnectionState state = ConnectionState::kDevice;
  Generation generation = Generation::kModern;
  // Where the phone's files and state live; empty: a temporary folder that is removed at the end.
  std::string root;
  std::string profile = "plain";
  std::string encryption = "file";   // or "block", "none"
  std::string su;                    // where su lies: "bin", "xbin", or nowhere
  std::string tools;                 // "toolbox" or "toybox": whose ls and df; empty: as in this generation
  std::string storage = "emulated";  // or "sdcard0", "sdcard1": what the internal storage is called
  std::string storage_group;         // who owns the volumes; empty: as on phones of this generation
  KeyValues properties;              // in place of those of the profile
  std::vector<Fault> faults;
  // The names of the SD cards under /storage, such as 1A2B-3C4D.
  std::vector<std::string> cards;
};

// Reads "SERIAL[,key=value]…"; throws std::invalid_argument with a text for the user.
PhoneOptions ParsePhoneOptions(const std::string& text);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_SERVER_PHONE_OPTIONS_H
