#include "tools/phone/device/users.h"

#include <cstdio>

#include "tools/phone/common/faults.h"
#include "tools/phone/device/layout.h"

namespace darokleim::phone {

namespace {

constexpr char kOtherUser[] = "10";

}  // namespace

std::string CurrentUser() {
  const auto restricted = Faults(kSetupFolder).Value(fault::kUserRestricted);
  if (!restricted) return "0";
  return restricted->empty() ? kOtherUser : *restricted;
}

bool MayActFor(const std::string& user) {
  if (!Faults(kSetupFolder).Has(fault::kUserRestricted) || user == CurrentUser() || user == "current")
    return true;
  std::fprintf(stderr,
               "\nException occurred while executing:\n"
               "java.lang.SecurityException: Shell does not have permission to access user %s\n"
               "\tat com.android.server.am.ActivityManagerService.handleIncomingUser"
               "(ActivityManagerService.java:17345)\n",
               user.c_str());
  return false;
}

}  // namespace darokleim::phone
