#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_LAYOUT_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_LAYOUT_H

namespace darokleim::phone {

// Where things are inside a phone, agreed between the server, which lays the phone out, and what runs in it.

// The user that adb commands run as on every Android phone.
inline constexpr int kShellUser = 2000;

inline constexpr char kShell[] = "/system/bin/sh";
inline constexpr char kToybox[] = "/system/bin/toybox";
// A phone's only encoding is UTF-8. The tools of this host know others, and ls garbles names without this file of the
// host, which a phone sees at the same place.
inline constexpr char kCharacters[] = "/usr/lib/locale/C.utf8/LC_CTYPE";
// This program: the daemon, and each of the phone's own programs under a link with its name.
inline constexpr char kDeviceProgram[] = "/system/bin/adbd";
// What the phone keeps that no file of a real phone shows: properties set, packages, typed text. Any program of the
// phone may change it, so the server follows no path in it.
inline constexpr char kStateFolder[] = "/dev/.state";
// Files under the state folder.
inline constexpr char kSetProperties[] = "set-properties";
inline constexpr char kSettings[] = "settings";
// What the server tells the phone, which sees it read-only: faults, owners, disks, and the two files below.
inline constexpr char kSetupFolder[] = "/dev/.setup";
// The folders that a phone has where its programs may write, a line each. The phone makes them when it boots.
inline constexpr char kFoldersToMake[] = "folders";
// The same for links: "LINK TARGET".
inline constexpr char kLinksToMake[] = "links";
// The properties that the phone was built with, as the server lays them down.
inline constexpr char kBuildProperties[] = "/system/build.prop";
// The phone's end of the link to the server, open in the daemon from the start.
inline constexpr int kLinkDescriptor = 3;

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_LAYOUT_H
