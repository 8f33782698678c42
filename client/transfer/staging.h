// Files on the phone that get their names when they are whole: they are sent into a temporary folder inside the folder that
// they are for, and moved out of it a batch at a time, so that no break harms an older file. A batch is moved while the next
// files are sent. Temporary folders in the same folders that nobody uses any more are removed: of processes of this computer that were
// killed, and of transfers whose phone was gone when they ended.
#ifndef DAROKLEIM_CLIENT_TRANSFER_STAGING_H
#define DAROKLEIM_CLIENT_TRANSFER_STAGING_H

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "client/shell.h"
#include "client/temporary_name.h"

namespace darokleim::client {

class Staging {
 public:
  explicit Staging(Features* features) : features_(features), device_(features->device()) {}
  // Removes what was not committed, with a time limit of its own: also after a cancel.
  ~Staging();
  Staging(const Staging&) = delete;
  Staging& operator=(const Staging&) = delete;

  // A file of this folder is going to be sent. Whole() or Drop() follows.
  void Expect(const std::string& folder) { ++folders_[folder].under_way; }
  // Where the file `name` of `folder` is to be sent; the daemon makes the folders.
  std::string PathFor(const std::string& folder, const std::string& name);
  // The file at PathFor() is whole.
  void Whole(const std::string& folder, const std::string& name);
  // It will not be sent.
  void Drop(const std::string& folder) { --folders_[folder].under_way; }
  // A folder that is made with the next batch.
  void Make(std::string folder);

  // Whole files that are not being moved yet, and folders that are to be made.
  std::size_t waiting() const { return waiting_ + folders_to_make_.size(); }
  // Files that are known to have their names.
  std::uint64_t named() const { return named_; }

  // Begins to move every whole file to its name, after the batch before. `failed` gets the path of each that could not be moved,
  // and the phone's words; not OK from it ends the rest.
  using Fail = std::function<Status(Error)>;
  Status Commit(const Limits& limits, const Fail& failed);
  // The same, to the end; the temporary folders are then gone.
  Status Finish(const Limits& limits, const Fail& failed);

 private:
  // A temporary folder, and its name for as long as it may be there.
  struct Temporary {
    std::string path;
    std::shared_ptr<const TemporaryName> name;
  };
  struct Folder {
    Temporary temporary;
    std::vector<std::string> whole;
    std::size_t under_way = 0;
  };
  // Files of one folder, all that are left of it where it is the last.
  struct Part {
    std::string folder;
    Temporary temporary;
    std::vector<std::string> names;
    bool is_last = false;
  };
  struct Batch {
    std::vector<std::string> folders_to_make;
    std::vector<Part> parts;
  };

  Batch TakeBatch();
  // It prints the temporary folders that are left where nothing more is going to be moved.
  static std::string ScriptOf(const Batch& batch);
  // Waits for the batch that is being moved.
  Status Settle(const Limits& limits, const Fail& failed);
  // What of the batch failed, and why.
  Status Explain(const Batch& batch, const Limits& limits, const Fail& failed);
  Status ExplainPart(const Part& part, const Limits& limits, const std::function<void(Error)>& failed);
  // Those of the names that are still in the temporary folder.
  Result<std::vector<std::string>> LeftOf(const Part& part, const Limits& limits);

  Features* const features_;
  dk_device* const device_;
  std::map<std::string, Folder> folders_;
  std::vector<std::string> folders_to_make_;
  std::size_t waiting_ = 0;
  std::uint64_t named_ = 0;
  Batch moving_;  // by the script
  std::optional<RunningScript> script_;
  std::string left_overs_;  // a line each
};

// What was left in some folders by killed processes, or when the phone was gone, looked for while the caller does something else.
class LeftOvers {
 public:
  explicit LeftOvers(Features* features) : features_(features) {}

  void Look(const std::vector<std::string>& folders, const Limits& limits);
  // Waits for what was found and removes it.
  void Remove(const Limits& limits);

 private:
  Features* const features_;
  std::optional<RunningScript> script_;
};

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_TRANSFER_STAGING_H
