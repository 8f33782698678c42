#include "tools/phone/server/change_feed.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>

#include "tools/phone/common/io.h"

namespace darokleim::phone {

void ChangeFeed::Watcher::Acknowledge() {
  char bytes[64];
  while (read(read_end_.get(), bytes, sizeof(bytes)) > 0) {
  }
}

std::shared_ptr<ChangeFeed::Watcher> ChangeFeed::Watch() {
  auto ends = MakePipe();
  if (!ends) return nullptr;
  auto watcher = std::make_shared<Watcher>();
  watcher->read_end_ = std::move(ends->first);
  watcher->write_end_ = std::move(ends->second);
  fcntl(watcher->read_end_.get(), F_SETFL, O_NONBLOCK);
  fcntl(watcher->write_end_.get(), F_SETFL, O_NONBLOCK);
  std::lock_guard lock(mutex_);
  watchers_.push_back(watcher);
  return watcher;
}

void ChangeFeed::Notify() {
  std::lock_guard lock(mutex_);
  watchers_.erase(std::remove_if(watchers_.begin(), watchers_.end(),
                                 [](const auto& watcher) { return watcher.expired(); }),
                  watchers_.end());
  for (const auto& entry : watchers_) {
    // A full pipe already holds a wake-up.
    if (const auto watcher = entry.lock()) {
      [[maybe_unused]] const ssize_t count = write(watcher->write_end_.get(), "c", 1);
    }
  }
}

}  // namespace darokleim::phone
