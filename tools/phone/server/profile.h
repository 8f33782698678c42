#ifndef DAROKLEIM_TOOLS_PHONE_SERVER_PROFILE_H
#define DAROKLEIM_TOOLS_PHONE_SERVER_PROFILE_H

#include <string>
#include <vector>

#include "tools/phone/common/key_values.h"
#include "tools/phone/server/phone_options.h"

namespace darokleim::phone {

// The properties of the phone: those of its maker and Android release, and those that the user set.
KeyValues BuildProperties(const PhoneOptions& options);

// The makers and systems that --phone knows as profile=NAME.
std::vector<std::string> ProfileNames();

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_SERVER_PROFILE_H
