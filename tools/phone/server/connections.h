#ifndef DAROKLEIM_TOOLS_PHONE_SERVER_CONNECTIONS_H
#define DAROKLEIM_TOOLS_PHONE_SERVER_CONNECTIONS_H

#include <functional>
#include <list>
#include <mutex>
#include <thread>

#include "base/unique_fd.h"

namespace darokleim::phone {

// The server's open connections, each with a thread of its own. Stopping ends every one of them.
class Connections {
 public:
  ~Connections() { StopAll(); }

  // Runs `serve` on a new thread and closes the connection afterwards; `serve` may take it away. After
  // StopAll(), and when the system has no thread left, the connection is closed at once.
  void Serve(base::UniqueFd connection, std::function<void(base::UniqueFd*)> serve);
  // Takes the connection away, so that StopAll() leaves it open. To be called from its `serve`.
  base::UniqueFd Release(base::UniqueFd* connection);
  // Shuts every connection down and waits for its thread. Not to be called from `serve`.
  void StopAll();
  // Afterwards connections are served again.
  void Reopen();

 private:
  struct Connection {
    std::thread thread;
    // A duplicate, so that shutting down never meets a descriptor that was closed and given out again.
    base::UniqueFd for_shutdown;
    bool finished = false;
  };

  void Run(Connection* entry, base::UniqueFd connection, const std::function<void(base::UniqueFd*)>& serve);
  void JoinFinished();

  std::mutex mutex_;
  std::list<Connection> open_;
  bool stopped_ = false;
};

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_SERVER_CONNECTIONS_H
