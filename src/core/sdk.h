// What the SDK keeps for the life of the process.
#ifndef DAROKLEIM_SRC_CORE_SDK_H
#define DAROKLEIM_SRC_CORE_SDK_H

#include <string>

// Set by the first AdbSdkInit with all its arguments, whatever came of it, and never reset.
extern bool is_inited;

// Host path of the busybox executable that is installed on devices; empty before AdbSdkInit.
extern std::string s_busybox_fullpath;

#endif  // DAROKLEIM_SRC_CORE_SDK_H
