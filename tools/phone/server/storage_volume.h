#ifndef DAROKLEIM_TOOLS_PHONE_SERVER_STORAGE_VOLUME_H
#define DAROKLEIM_TOOLS_PHONE_SERVER_STORAGE_VOLUME_H

#include <string>

namespace darokleim::phone {

// A storage volume: a folder of the phone that appears at a place of its own under /storage.
struct StorageVolume {
  std::string kept_in;
  std::string shown_at;
};

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_SERVER_STORAGE_VOLUME_H
