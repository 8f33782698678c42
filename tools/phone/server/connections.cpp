#include "server/connections.h"

#include <fcntl.h>
#include <sys/socket.h>

#include <utility>

namespace darokleim::phone {

void Connections::Serve(UniqueFd connection, std::function<void(UniqueFd*)> serve) {
  JoinFinished();
  std::lock_guard lock(mutex_);
  if (stopped_) return;
  Connection& entry = open_.emplace_back();
  entry.for_shutdown.Reset(fcntl(connection.get(), F_DUPFD_CLOEXEC, 0));
  entry.thread =
      std::thread([this, &entry, owned = std::move(connection), serve = std::move(serve)]() mutable {
        serve(&owned);
        std::lock_guard finish(mutex_);
        owned.Reset();
        entry.for_shutdown.Reset();
        entry.finished = true;
      });
}

void Connections::StopAll() {
  {
    std::lock_guard lock(mutex_);
    stopped_ = true;
    for (Connection& entry : open_) {
      if (entry.for_shutdown.valid()) shutdown(entry.for_shutdown.get(), SHUT_RDWR);
    }
  }
  // No entry is added any more, so the list itself is stable without the lock.
  for (Connection& entry : open_) {
    if (entry.thread.joinable()) entry.thread.join();
  }
}

void Connections::Reopen() {
  std::lock_guard lock(mutex_);
  open_.clear();
  stopped_ = false;
}

void Connections::JoinFinished() {
  std::list<Connection> finished;
  {
    std::lock_guard lock(mutex_);
    if (stopped_) return;
    for (auto entry = open_.begin(); entry != open_.end();) {
      const auto next = std::next(entry);
      if (entry->finished) finished.splice(finished.end(), open_, entry);
      entry = next;
    }
  }
  for (Connection& entry : finished) entry.thread.join();
}

}  // namespace darokleim::phone
