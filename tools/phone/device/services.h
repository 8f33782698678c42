#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_SERVICES_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_SERVICES_H

#include <string>

#include "base/unique_fd.h"

namespace darokleim::phone {

// One request of a client to the phone, in the process that answers it.
struct Request {
  std::string service;
  bool legacy;
  int link;            // to the server
  std::string answer;  // the daemon's own answer, after OKAY
};

// Answers OKAY or FAIL and serves until the stream ends.
void RunService(const Request& request, base::UniqueFd stream);

// The other end of a forward: carries bytes between the stream and the address that the request names.
void ConnectToPhoneAddress(const Request& request, base::UniqueFd stream);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_SERVICES_H
