#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_PROGRAMS_PM_SESSIONS_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_PROGRAMS_PM_SESSIONS_H

#include <optional>

#include "tools/phone/device/programs/programs.h"

namespace darokleim::phone {

// pm install, and install-create, install-write, install-commit and install-abandon, which together install a
// package that comes in several files. Nothing for other words.
std::optional<int> RunPmInstall(const Words& words);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_PROGRAMS_PM_SESSIONS_H
