#ifndef DAROKLEIM_TOOLS_PHONE_SERVER_CHANGE_FEED_H
#define DAROKLEIM_TOOLS_PHONE_SERVER_CHANGE_FEED_H

#include <memory>
#include <mutex>
#include <vector>

#include "base/unique_fd.h"

namespace darokleim::phone {

// Wakes those who watch the list of phones. Any thread may notify; each watcher polls a descriptor of its own,
// beside its client's connection.
class ChangeFeed {
 public:
  class Watcher {
   public:
    // Readable after a change, until Acknowledge().
    int descriptor() const { return read_end_.get(); }
    void Acknowledge();

   private:
    friend class ChangeFeed;
    base::UniqueFd read_end_;
    base::UniqueFd write_end_;
  };

  // Null when the system has no descriptors left.
  std::shared_ptr<Watcher> Watch();
  void Notify();

 private:
  std::mutex mutex_;
  std::vector<std::weak_ptr<Watcher>> watchers_;
};

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_SERVER_CHANGE_FEED_H
