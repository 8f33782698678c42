// The header needs no other header before it.
#include "darokleim.h"

// The types of the functions that only C++ callers see are part of their linkage names.
[[maybe_unused]] constexpr int (*kGetPropInfo)(const char*, const char*, char**, int*,
                                               const bool*) = &GetPropInfo;
[[maybe_unused]] constexpr bool (*kAppendMiuiVersionByTimeCode)(std::string,
                                                                std::string&) = &AppendMiuiVersionByTimeCode;
[[maybe_unused]] constexpr int (*kAdbCheckFileExistedUsingFolderContent)(
    const char*, const char*, bool*, const bool*) = &AdbCheckFileExistedUsingFolderContent;
[[maybe_unused]] constexpr int (*kAdbGetFileCreateTimeFromLs)(const char*, const char*, unsigned long long*,
                                                              const bool*) = &AdbGetFileCreateTimeFromLs;

int IncludedAsCpp();
int IncludedAsCpp() {
  return ADB_RESULT_OK;
}
