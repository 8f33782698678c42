// The state of the SDK, which lasts as long as the process.
#ifndef DAROKLEIM_SRC_CORE_SDK_H
#define DAROKLEIM_SRC_CORE_SDK_H

#include <string>

// Set by the first AdbSdkInit without a null argument, whatever its result, and never reset.
extern bool is_inited;

// Host path of the busybox executable that is installed on devices; empty before AdbSdkInit.
extern std::string s_busybox_fullpath;

#endif  // DAROKLEIM_SRC_CORE_SDK_H
