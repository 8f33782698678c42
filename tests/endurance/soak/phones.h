// The phones of the soak, and what can be done to them from outside.
#ifndef DAROKLEIM_TESTS_ENDURANCE_SOAK_PHONES_H
#define DAROKLEIM_TESTS_ENDURANCE_SOAK_PHONES_H

#include <sys/types.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/process.h"

namespace darokleim::soak {

// Simulated phones, every other one of the old generation, with a server that outlives `kill-server`. Their files outlive the
// server, too. One thread at a time may do something to one phone; KillServer() only while no other does.
class Phones {
 public:
  // Keeps the phones' files in this folder. Throws std::runtime_error when they do not start.
  Phones(const std::string& folder, std::size_t count);
  ~Phones() { End(); }
  Phones(const Phones&) = delete;
  Phones& operator=(const Phones&) = delete;
  void End();

  std::size_t count() const { return phones_.size(); }
  const std::string& serial(std::size_t phone) const { return phones_[phone].serial; }
  bool is_old(std::size_t phone) const { return phones_[phone].is_old; }
  // Where this computer sees its files.
  const std::string& files(std::size_t phone) const { return phones_[phone].files; }
  std::string server() const { return "tcp:" + port_; }

  // darokleim-phone ctl SERIAL words. Tries again while the server is away.
  void Control(std::size_t phone, const test::Words& words) const;
  // Waits until they are ready.
  void AwaitReady(std::size_t phone) const;
  void AwaitAttached(const std::vector<bool>& may_be_away) const;
  // Stops every process of the phone where it is, and lets them go on.
  void Freeze(std::size_t phone);
  void Thaw(std::size_t phone);
  // The server crashes, and the phones with it; then both start again.
  void KillServer();

 private:
  struct Phone {
    std::string serial;
    bool is_old;
    std::string files;
    std::vector<pid_t> frozen;
  };

  void Start(const std::string& port);
  std::string List() const;
  std::string StateOf(const std::string& list, std::size_t phone) const;

  std::string folder_;
  std::vector<Phone> phones_;
  std::string port_;
  std::unique_ptr<test::HostProcess> server_;
};

}  // namespace darokleim::soak

#endif  // DAROKLEIM_TESTS_ENDURANCE_SOAK_PHONES_H
