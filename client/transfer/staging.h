// Files on the phone that get their names when they are whole: they are sent into a temporary folder inside the folder that
// they are for, and moved out of it a batch at a time, so that no break harms an older file.
#ifndef DAROKLEIM_CLIENT_TRANSFER_STAGING_H
#define DAROKLEIM_CLIENT_TRANSFER_STAGING_H

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "client/context.h"

namespace darokleim::client {

class Staging {
 public:
  explicit Staging(dk_device* device) : device_(device) {}
  // Removes what was not committed, with a time limit of its own: also after a cancel.
  ~Staging();
  Staging(const Staging&) = delete;
  Staging& operator=(const Staging&) = delete;

  // Where the file `name` of `folder` is to be sent; the daemon makes the folders.
  std::string PathFor(const std::string& folder, const std::string& name);

  // The file at PathFor() is whole.
  void Whole(const std::string& folder, const std::string& name);
  std::size_t waiting() const { return waiting_; }

  // Moves every whole file to its name. `failed` gets the path of each that could not be, and the phone's words; not OK from it
  // ends the rest.
  using Fail = std::function<Status(Error)>;
  Status Commit(const Limits& limits, const Fail& failed);

  // Removes temporary folders in `folders` that a process of this computer left when it was killed.
  static void RemoveLeftOvers(dk_device* device, const std::vector<std::string>& folders,
                              const Limits& limits);

 private:
  struct Folder {
    std::string temporary;
    std::vector<std::string> whole;
  };

  Status CommitSome(const std::string& folder, const Folder& some, const Limits& limits, const Fail& failed);
  Status ReportLeft(const std::string& folder, const Folder& some, const std::string& words,
                    const Limits& limits, const Fail& failed);

  dk_device* const device_;
  std::map<std::string, Folder> folders_;
  std::size_t waiting_ = 0;
};

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_TRANSFER_STAGING_H
