#include "tools/phone/server/forwards.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

namespace darokleim::phone {

std::string Forwards::Add(const std::string& serial, const std::string& local, const std::string& remote,
                          bool rebind, uint16_t* port) {
  *port = 0;
  const auto wanted = SocketAddress::Parse(local);
  if (!wanted) return "cannot bind listener: no address of a socket: " + local;
  std::lock_guard lock(mutex_);
  for (Forward& existing : forwards_) {
    if (existing.local != local) continue;
    if (!rebind) return "cannot rebind existing socket";
    existing.serial = serial;
    existing.remote = remote;
    return "";
  }
  Forward forward;
  forward.listener = Listener(*wanted);
  auto stop = MakePipe();
  if (!forward.listener.valid() || !stop) return std::string("cannot bind listener: ") + std::strerror(errno);
  *port = forward.listener.port();
  forward.serial = serial;
  forward.local = *port != 0 ? "tcp:" + std::to_string(*port) : local;
  forward.remote = remote;
  forward.stop = std::move(*stop);
  Forward& kept = forwards_.emplace_back(std::move(forward));
  try {
    kept.thread = std::thread([this, &kept] { Accept(kept); });
  } catch (const std::system_error& error) {
    forwards_.pop_back();
    return std::string("cannot bind listener: ") + error.what();
  }
  return "";
}

bool Forwards::Remove(const std::string& local) {
  std::list<Forward> removed;
  {
    std::lock_guard lock(mutex_);
    for (auto entry = forwards_.begin(); entry != forwards_.end(); ++entry) {
      if (entry->local != local) continue;
      removed.splice(removed.end(), forwards_, entry);
      break;
    }
  }
  const bool found = !removed.empty();
  Stop(std::move(removed));
  return found;
}

void Forwards::RemoveAll() {
  std::list<Forward> removed;
  {
    std::lock_guard lock(mutex_);
    removed.swap(forwards_);
  }
  Stop(std::move(removed));
}

void Forwards::RemoveOf(const std::string& serial) {
  std::list<Forward> removed;
  {
    std::lock_guard lock(mutex_);
    for (auto entry = forwards_.begin(); entry != forwards_.end();) {
      const auto next = std::next(entry);
      if (entry->serial == serial) removed.splice(removed.end(), forwards_, entry);
      entry = next;
    }
  }
  Stop(std::move(removed));
}

std::string Forwards::Listing() const {
  std::lock_guard lock(mutex_);
  std::string listing;
  for (const Forward& forward : forwards_)
    listing += forward.serial + " " + forward.local + " " + forward.remote + "\n";
  return listing;
}

void Forwards::Accept(const Forward& forward) {
  for (;;) {
    std::array<pollfd, 2> ends = {
        {{forward.listener.get(), POLLIN, 0}, {forward.stop.first.get(), POLLIN, 0}}};
    if (poll(ends.data(), ends.size(), -1) < 0 && errno != EINTR) return;
    if (ends[1].revents != 0) return;
    if (ends[0].revents == 0) continue;
    const base::UniqueFd connection = AcceptConnection(forward.listener.get());
    std::string serial;
    std::string remote;
    {
      std::lock_guard lock(mutex_);
      serial = forward.serial;
      remote = forward.remote;
    }
    Phone* phone = phones_->PhoneWithSerial(serial);
    if (connection.valid() && phone != nullptr) phone->Open(LinkMessage::kConnect, remote, connection);
  }
}

// Without the lock: the threads that end here may be waiting for it.
void Forwards::Stop(std::list<Forward> forwards) {
  for (Forward& forward : forwards) {
    [[maybe_unused]] const ssize_t count = write(forward.stop.second.get(), "x", 1);
    forward.thread.join();
  }
}

}  // namespace darokleim::phone
