// Every call of the client that asks a server, with what it comes to on a SpoiltPhone that answers as it should.
#ifndef DAROKLEIM_TESTS_CLIENT_CALLS_H
#define DAROKLEIM_TESTS_CLIENT_CALLS_H

#include <darokleim/client.h>

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace darokleim::client_test {

struct Place {
  dk_context* context;
  dk_device* device;
  std::string folder;  // of this computer; PreparePlace() fills it
};

// A context for the server at this address and its phone X; they are freed with it.
class Client {
 public:
  explicit Client(const std::string& server);
  ~Client();
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  dk_context* context() const { return context_; }
  dk_device* device() const { return device_; }

 private:
  dk_context* context_ = nullptr;
  dk_device* device_ = nullptr;
};

struct ClientCall {
  std::string name;
  std::string expected;  // of a call that succeeds
  // Appends what the call gave to `result`, which has room for it.
  std::function<dk_code(const Place& place, const dk_call* call, std::string* result)> run;
  bool modern_only = false;  // old phones cannot do it
  bool of_server = false;    // the phone is not asked
  bool ends_server = false;  // whose end is a success before its answer
  bool cleans_up = false;    // a failure is followed by a clean-up with a time limit of its own, 5 seconds
};
std::ostream& operator<<(std::ostream& out, const ClientCall& call);

const std::vector<ClientCall>& ClientCalls();

// The files that calls send, and older ones at the targets of those that fetch.
void PreparePlace(const std::string& folder);
// What calls must not have done there: a file that is neither the older nor the whole new one, or a temporary file. Empty where
// all is well.
std::string HarmAt(const std::string& folder);

}  // namespace darokleim::client_test

#endif  // DAROKLEIM_TESTS_CLIENT_CALLS_H
