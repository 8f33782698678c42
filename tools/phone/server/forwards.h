#ifndef DAROKLEIM_TOOLS_PHONE_SERVER_FORWARDS_H
#define DAROKLEIM_TOOLS_PHONE_SERVER_FORWARDS_H

#include <cstdint>
#include <list>
#include <mutex>
#include <string>
#include <thread>

#include "tools/phone/common/address.h"
#include "tools/phone/common/io.h"
#include "tools/phone/server/phone_list.h"

namespace darokleim::phone {

// The host's ports and sockets that reach those of the phones. Each has a thread that accepts connections and hands
// them to the phone, which carries the bytes.
class Forwards {
 public:
  explicit Forwards(PhoneList* phones) : phones_(phones) {}
  ~Forwards() { RemoveAll(); }

  // Listens at `local` ("tcp:0": a port that is free) for the phone. The result is empty or the reason for
  // refusing; `port` gets the TCP port of a new listener, and 0 otherwise.
  std::string Add(const std::string& serial, const std::string& local, const std::string& remote, bool rebind,
                  uint16_t* port);
  // False when there is none.
  bool Remove(const std::string& local);
  void RemoveAll();
  // A phone's forwards end when it goes away.
  void RemoveOf(const std::string& serial);

  // "SERIAL LOCAL REMOTE" lines, the form of `adb forward --list`.
  std::string Listing() const;

 private:
  struct Forward {
    std::string serial;
    std::string local;
    std::string remote;
    Listener listener;
    FdPair stop;
    std::thread thread;
  };

  void Accept(const Forward& forward);
  void Stop(std::list<Forward> forwards);

  PhoneList* phones_;
  mutable std::mutex mutex_;
  std::list<Forward> forwards_;
};

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_SERVER_FORWARDS_H
