#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_TOOLS_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_TOOLS_H

#include <string>
#include <vector>

namespace darokleim::phone {

// The commands of /system/bin that are toybox on a phone. Those that a phone has under the same name but that
// answer from the phone's own services (getprop, logcat …) are not among them.
const std::vector<std::string>& ToyboxCommands();

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_TOOLS_H
