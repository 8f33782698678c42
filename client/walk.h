// Everything below a folder of the phone.
#ifndef DAROKLEIM_CLIENT_WALK_H
#define DAROKLEIM_CLIENT_WALK_H

#include <functional>
#include <string>

#include "client/sync.h"

namespace darokleim::client {

struct WalkVisitor {
  // Each entry; `descend` is whether a folder is entered and may be changed. A status that is not OK ends the walk.
  std::function<Status(const dk_entry& entry, std::uint32_t depth, bool* descend)> visit;
  // A folder below the first that cannot be read, or an entry that is left out for its name.
  std::function<Status(Error error)> fail;
};

// Folder after folder, each one's entries in the phone's order, a folder before what is in it. Many lists are asked for ahead.
// Fails where the first folder cannot be read.
Status WalkPhone(dk_device* device, const std::string& root, const WalkVisitor& visitor,
                 const Limits& limits);
// Over a connection on which nothing is asked. Nothing is after a walk that succeeds; after another one it is of no more use.
Status WalkPhone(dk_device* device, Sync* sync, const std::string& root, const WalkVisitor& visitor,
                 const Limits& limits);

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_WALK_H
