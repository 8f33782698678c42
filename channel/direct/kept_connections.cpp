#include "channel/direct/kept_connections.h"

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <list>
#include <memory>
#include <mutex>
#include <new>
#include <thread>

#include "base/signals_blocked.h"

namespace darokleim::channel::direct {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kKeptFor{2};
constexpr size_t kMost = 8;

struct Kept {
  std::string key;
  adb::SyncConnection connection;
  Clock::time_point end;
};
using KeptList = std::list<Kept>;

// Of one process.
class Pool {
 public:
  Pool() = default;
  Pool(const Pool&) = delete;
  Pool& operator=(const Pool&) = delete;
  // After Close().
  ~Pool() = default;

  bool IsOfThisProcess() const { return owner_ == getpid(); }

  KeptList Take(const std::string& key) {
    KeptList taken;
    const std::lock_guard lock(mutex_);
    // The last one is the one most likely to be usable.
    for (auto kept = kept_.end(); kept != kept_.begin();) {
      if ((--kept)->key != key) continue;
      taken.splice(taken.end(), kept_, kept);
      break;
    }
    return taken;
  }

  // Returns what is not kept.
  KeptList Keep(KeptList added) {
    KeptList dropped;
    const std::lock_guard lock(mutex_);
    if (closed_ || !StartCloser()) return added;
    added.front().end = Clock::now() + kKeptFor;
    kept_.splice(kept_.end(), added);
    if (kept_.size() > kMost) dropped.splice(dropped.end(), kept_, kept_.begin());
    return dropped;
  }

  void Close() {
    {
      const std::lock_guard lock(mutex_);
      closed_ = true;
      change_.notify_all();
    }
    if (closer_.joinable()) closer_.join();
    Quit(std::move(kept_));
  }

  // In a fork: closes its copies of the descriptors, unless another thread of the parent was at work on the list.
  void CloseCopies() {
    if (mutex_.try_lock()) kept_.clear();
  }

  static void Quit(KeptList connections) {
    for (Kept& kept : connections) kept.connection.Quit();
  }

 private:
  bool StartCloser() {
    if (closer_runs_) return true;
    if (closer_.joinable()) closer_.join();  // it has ended, or does so without the mutex
    try {
      const base::SignalsBlocked blocked;
      closer_ = std::thread([this] { CloseInTime(); });
    } catch (const std::exception&) {
      return false;  // without the thread nothing is kept
    }
    closer_runs_ = true;
    return true;
  }

  void CloseInTime() {
    std::unique_lock lock(mutex_);
    // The thread that started this one adds a connection before it releases the mutex.
    while (!closed_ && !kept_.empty()) {
      // A copy: the connection may be taken meanwhile.
      const Clock::time_point end = kept_.front().end;
      change_.wait_until(lock, end);
      KeptList expired;
      while (!kept_.empty() && kept_.front().end <= Clock::now()) {
        expired.splice(expired.end(), kept_, kept_.begin());
      }
      lock.unlock();
      Quit(std::move(expired));
      lock.lock();
    }
    closer_runs_ = false;
  }

  const pid_t owner_ = getpid();
  std::mutex mutex_;
  std::condition_variable change_;
  KeptList kept_;  // the oldest first
  std::thread closer_;
  bool closer_runs_ = false;
  bool closed_ = false;
};

// A fork cannot destroy the pool of its parent: threads that it does not have are waiting in it. It makes one of its own.
class PoolOfThisProcess {
 public:
  ~PoolOfThisProcess() {
    Pool* const pool = pool_.exchange(nullptr);
    closed_ = true;
    if (pool == nullptr || !pool->IsOfThisProcess()) return;
    pool->Close();
    delete pool;
  }

  // Null once the library is being unloaded.
  Pool* Get() {
    Pool* pool = pool_.load();
    if (pool != nullptr && pool->IsOfThisProcess()) return pool;
    if (closed_) return nullptr;
    auto own = std::make_unique<Pool>();
    if (!pool_.compare_exchange_strong(pool, own.get())) return pool;
    if (pool != nullptr) pool->CloseCopies();
    return own.release();
  }

 private:
  std::atomic<Pool*> pool_ = nullptr;
  std::atomic<bool> closed_ = false;
};

PoolOfThisProcess pool_of_this_process;

}  // namespace

std::optional<adb::SyncConnection> TakeKeptConnection(const std::string& key) {
  Pool* const pool = pool_of_this_process.Get();
  while (pool != nullptr) {
    KeptList taken = pool->Take(key);
    if (taken.empty()) break;
    if (taken.front().connection.IsIdle()) return std::move(taken.front().connection);
  }
  return std::nullopt;
}

void KeepConnection(const std::string& key, adb::SyncConnection connection) {
  if (!connection.IsIdle()) return;
  try {
    KeptList added;
    added.push_back({key, std::move(connection), {}});
    Pool* const pool = pool_of_this_process.Get();
    Pool::Quit(pool == nullptr ? std::move(added) : pool->Keep(std::move(added)));
  } catch (const std::bad_alloc&) {
    // The command has had its answer; the connection is closed.
  }
}

}  // namespace darokleim::channel::direct
