// adb's own listing of one device directory, which needs no tool on the device and quotes nothing.
#ifndef DAROKLEIM_SRC_FILESYSTEM_ADB_LS_RUN_H
#define DAROKLEIM_SRC_FILESYSTEM_ADB_LS_RUN_H

#include <string>
#include <string_view>

#include "src/core/adb_run.h"
#include "src/core/argument_text.h"

namespace darokleim::sdk {

inline AdbRun RunAdbLs(const char* serial, std::string_view directory, const bool* cancel) {
  return AdbRun(Measured(" -s %s ls \"%s\"", serial, std::string(directory).c_str()), cancel);
}

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_FILESYSTEM_ADB_LS_RUN_H
