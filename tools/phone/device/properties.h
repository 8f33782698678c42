#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_PROPERTIES_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_PROPERTIES_H

#include <string>

#include "tools/phone/common/key_values.h"

namespace darokleim::phone {

// The phone's system properties: those it was built with, and those set since. Only the ones that begin with
// "persist." outlive a reboot.
KeyValues AllProperties();
std::string Property(const std::string& name);
// False when the name is one that cannot be set, or cannot be set twice.
bool SetProperty(const std::string& name, const std::string& value);

// Removes the set properties that do not outlive a reboot.
void RemovePropertiesOfLastBoot();

// Before Android 7.
bool IsLegacyPhone();

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_PROPERTIES_H
