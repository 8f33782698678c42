#ifndef DAROKLEIM_SRC_CORE_DEVICE_TEMP_DIR_H
#define DAROKLEIM_SRC_CORE_DEVICE_TEMP_DIR_H

namespace darokleim::sdk {

// Where adb's shell may write on every device, with its slash at the end. Files wait here between two steps of a
// function, under their names on the host: two of one name share a place.
inline constexpr char kDeviceTempDir[] = "/data/local/tmp/";

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_CORE_DEVICE_TEMP_DIR_H
