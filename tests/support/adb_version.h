// The adb in PATH, and what the two releases that the tests are run with do differently: 29 (Debian 12) and 34
// (Debian 13). Elsewhere tests expect the same of both. `scripts/check adb-versions` runs them with 34.
//
//   What                                                29                          34
//   what a shell command prints if the server refuses   error: REASON               adb: REASON
//     the phone (get-state, disconnect: both error:)
//   push of a file that the phone refuses               the reason, then            ": 1 file pushed" before or
//                                                       ": 0 files pushed"          after the reason
//   push to a path of more than 1024 bytes              failed to send ID_SEND      failed to send ID_SEND_V1
//   install-multiple on Android 7 and later, of a file  the phone's shell splits    installs it
//     with a space or a quote in its own name           the name: refused
//   restore with more than one argument                 refuses                     takes the first
//   kill-server                                         does not read the answer    fails if it is not OKAY
//
// The exit status and the effect on the phone are the same but in the last three rows.
#ifndef DAROKLEIM_TESTS_SUPPORT_ADB_VERSION_H
#define DAROKLEIM_TESTS_SUPPORT_ADB_VERSION_H

#include <string>

namespace darokleim::test {

// The release of platform-tools that "adb version" names: 34 for "Version 34.0.5-debian". Throws when it names none.
int AdbRelease();

// Whether adb behaves as in the column of 34. Of releases between the two nothing is known.
inline bool AdbIsOfRelease34() {
  return AdbRelease() >= 34;
}

// What adb prints if the server refuses the phone of a shell command, with its line break.
std::string RefusalByAdb(const std::string& reason);

// What adb 29 would have printed where adb printed `text`, as in the first three rows.
std::string InTheWordsOfAdb29(const std::string& text);

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_SUPPORT_ADB_VERSION_H
