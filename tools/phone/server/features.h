#ifndef DAROKLEIM_TOOLS_PHONE_SERVER_FEATURES_H
#define DAROKLEIM_TOOLS_PHONE_SERVER_FEATURES_H

#include <string>

#include "tools/phone/server/phone_options.h"

namespace darokleim::phone {

// What a phone of this generation offers to the client, separated by commas. The client asks for them before
// it chooses between the forms of shell, file transfer and installation.
std::string FeaturesOf(Generation generation);

// What the server itself offers.
std::string HostFeatures();

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_SERVER_FEATURES_H
