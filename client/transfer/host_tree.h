// Files and folders of this computer that are to be sent.
#ifndef DAROKLEIM_CLIENT_TRANSFER_HOST_TREE_H
#define DAROKLEIM_CLIENT_TRANSFER_HOST_TREE_H

#include <cstdint>
#include <functional>
#include <string>

#include "client/error.h"

namespace darokleim::client {

struct HostFile {
  std::string path;
  std::string below;  // the path below the source, with a slash before it; empty for the source itself
  bool is_folder = false;
  std::uint64_t size = 0;
  std::int64_t modified = 0;  // seconds since 1970
  std::uint32_t permissions = 0;
};

// Hands the source itself and, when it is a folder, everything below it to `use`; a folder before what is in it, names in the
// order of their bytes. Links to files below the source are the files; all others are not followed: DK_UNSUPPORTED. What cannot be read
// or sent goes to `fail`. A status that is not OK ends the walk and is returned.
Status WalkHost(const std::string& source, const std::function<Status(const HostFile&)>& use,
                const std::function<Status(Error)>& fail);

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_TRANSFER_HOST_TREE_H
