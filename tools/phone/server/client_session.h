#ifndef DAROKLEIM_TOOLS_PHONE_SERVER_CLIENT_SESSION_H
#define DAROKLEIM_TOOLS_PHONE_SERVER_CLIENT_SESSION_H

#include <functional>
#include <string>

#include "base/unique_fd.h"
#include "tools/phone/server/features.h"
#include "tools/phone/server/forwards.h"
#include "tools/phone/server/host_request.h"
#include "tools/phone/server/phone_list.h"

namespace darokleim::phone {

// One client's connection, from its first request until it is answered or belongs to a phone.
class ClientSession {
 public:
  // `kill_server` is called for host:kill.
  ClientSession(ServerRelease release, PhoneList* phones, Forwards* forwards,
                std::function<void()> kill_server, base::UniqueFd* connection)
      : release_(release),
        phones_(phones),
        forwards_(forwards),
        kill_server_(std::move(kill_server)),
        connection_(connection) {}

  void Run();

 private:
  // True when the client has another request to make.
  bool Answer(const std::string& request);
  bool AnswerHost(HostRequest request);
  bool SelectPhone(const Target& target, bool with_id);
  void AnswerAboutPhone(const HostRequest& request);
  // False when the service is none of the forward ones.
  bool AnswerForward(std::string_view service, const std::string& serial);
  void AddForward(std::string_view addresses, const std::string& serial);
  void AnswerReconnect(const Target& target);
  void AnswerReconnectOffline();
  void AnswerDisconnect(std::string_view address);
  void AnswerWaitFor(std::string_view condition, Target target);
  void TrackDevices(bool with_details);
  void HandOver(const std::string& service);

  int fd() const { return connection_->get(); }

  ServerRelease release_;
  PhoneList* phones_;
  Forwards* forwards_;
  std::function<void()> kill_server_;
  base::UniqueFd* connection_;
  Phone* selected_ = nullptr;
  uint64_t selected_id_ = 0;
};

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_SERVER_CLIENT_SESSION_H
