#ifndef DAROKLEIM_TOOLS_PHONE_SERVER_FEATURES_H
#define DAROKLEIM_TOOLS_PHONE_SERVER_FEATURES_H

#include <string>

#include "tools/phone/server/phone_options.h"

namespace darokleim::phone {

// The releases of adb whose server can be simulated. They differ in their features.
enum class ServerRelease { kAdb29, kAdb34 };

// What the server offers, separated by commas.
std::string FeaturesOf(ServerRelease server);

// What a client is shown of a phone: the features that the phone has and the server knows. The client asks for them
// before it chooses between the forms of shell, file transfer and installation.
std::string FeaturesThrough(ServerRelease server, Generation phone);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_SERVER_FEATURES_H
