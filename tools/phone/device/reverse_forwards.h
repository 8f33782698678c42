#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_REVERSE_FORWARDS_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_REVERSE_FORWARDS_H

#include <poll.h>

#include <list>
#include <string>
#include <string_view>
#include <vector>

#include "tools/phone/common/address.h"

namespace darokleim::phone {

// The ports of the phone that reach ports of the host. They belong to the daemon, so they outlive the request
// that made them.
class ReverseForwards {
 public:
  // The answer to a "reverse:" service, after the OKAY of the stream itself.
  std::string Answer(std::string_view service);

  void RemoveAll() { forwards_.clear(); }
  // In a process that inherited them: closes them, and leaves their files to the daemon.
  void Abandon();

  // For the daemon's poll: what to wait for, and what to do then. Accepted connections go to the server.
  void AddTo(std::vector<pollfd>* waits) const;
  void Accept(const pollfd& ready, int link) const;

 private:
  struct Forward {
    std::string local;   // on the phone
    std::string remote;  // on the host
    Listener listener;
  };

  std::string Add(std::string_view addresses);
  std::string Listing() const;

  std::list<Forward> forwards_;
};

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_REVERSE_FORWARDS_H
