// The server's devices as the interface describes them.
#ifndef DAROKLEIM_CLIENT_DEVICES_H
#define DAROKLEIM_CLIENT_DEVICES_H

#include "adb/device_list.h"
#include "darokleim/client.h"

namespace darokleim::client {

dk_state StateOf(std::string_view text);

// Points into `device`.
dk_device_info InfoOf(const adb::AttachedDevice& device);

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_DEVICES_H
