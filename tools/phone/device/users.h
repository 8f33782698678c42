#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_USERS_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_USERS_H

#include <string>

namespace darokleim::phone {

// The number of the Android user in the foreground: 0, or another when the fault user-restricted has it so.
std::string CurrentUser();

// True when the shell may act for this user. While the first user is restricted it may only act for the current
// one. Otherwise the complaint has been printed.
bool MayActFor(const std::string& user);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_USERS_H
