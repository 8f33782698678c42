#include "tools/phone/server/connections.h"

#include <fcntl.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstdio>
#include <exception>
#include <system_error>
#include <utility>

namespace darokleim::phone {

void Connections::Serve(base::UniqueFd connection, std::function<void(base::UniqueFd*)> serve) {
  JoinFinished();
  std::lock_guard lock(mutex_);
  if (stopped_) return;
  Connection& entry = open_.emplace_back();
  entry.for_shutdown.Reset(fcntl(connection.get(), F_DUPFD_CLOEXEC, 0));
  try {
    if (!entry.for_shutdown.valid()) throw std::system_error(errno, std::generic_category());
    entry.thread =
        std::thread([this, &entry, owned = std::move(connection), serve = std::move(serve)]() mutable {
          Run(&entry, std::move(owned), serve);
        });
  } catch (const std::system_error& error) {
    std::fprintf(stderr, "darokleim-phone: a connection is dropped: %s\n", error.what());
    open_.pop_back();
  }
}

void Connections::Run(Connection* entry, base::UniqueFd connection,
                      const std::function<void(base::UniqueFd*)>& serve) {
  try {
    serve(&connection);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "darokleim-phone: a connection ends: %s\n", error.what());
  }
  std::lock_guard lock(mutex_);
  connection.Reset();
  entry->for_shutdown.Reset();
  entry->finished = true;
}

base::UniqueFd Connections::Release(base::UniqueFd* connection) {
  std::lock_guard lock(mutex_);
  for (Connection& entry : open_) {
    if (entry.thread.get_id() == std::this_thread::get_id()) entry.for_shutdown.Reset();
  }
  return std::move(*connection);
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
