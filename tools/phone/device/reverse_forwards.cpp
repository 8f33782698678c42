#include "tools/phone/device/reverse_forwards.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include "tools/phone/common/device_link.h"
#include "tools/phone/common/wire.h"

namespace darokleim::phone {

namespace {

constexpr char kOkay[] = "OKAY";

std::string Fail(const std::string& reason) {
  return "FAIL" + WithLength(reason);
}

}  // namespace

std::string ReverseForwards::Answer(std::string_view service) {
  if (service == "list-forward") return WithLength(Listing());
  if (service == "killforward-all") {
    RemoveAll();
    return kOkay;
  }
  if (TakePrefix(&service, "killforward:")) {
    const size_t removed =
        forwards_.remove_if([service](const Forward& forward) { return forward.local == service; });
    return removed > 0 ? kOkay : Fail("listener '" + std::string(service) + "' not found");
  }
  if (TakePrefix(&service, "forward:")) return Add(service);
  return Fail("unknown reverse service");
}

std::string ReverseForwards::Add(std::string_view addresses) {
  const bool rebind = !TakePrefix(&addresses, "norebind:");
  const std::vector<std::string> pieces = Split(addresses, ';');
  if (pieces.size() != 2 || pieces[1].empty()) return Fail("bad forward: " + std::string(addresses));
  const auto wanted = SocketAddress::Parse(pieces[0]);
  if (!wanted) return Fail("cannot bind listener: no address of a socket: " + pieces[0]);
  for (Forward& existing : forwards_) {
    if (existing.local != pieces[0]) continue;
    if (!rebind) return Fail("cannot rebind existing socket");
    existing.remote = pieces[1];
    return kOkay;
  }
  Listener listener(*wanted);
  if (!listener.valid()) return Fail(std::string("cannot bind listener: ") + std::strerror(errno));
  const std::string port = std::to_string(listener.port());
  const bool chosen = wanted->IsAnyFreePort();
  forwards_.push_back({chosen ? "tcp:" + port : pieces[0], pieces[1], std::move(listener)});
  return chosen ? kOkay + WithLength(port) : kOkay;
}

void ReverseForwards::Abandon() {
  for (Forward& forward : forwards_) forward.listener.Abandon();
  forwards_.clear();
}

// adb shows "(reverse)" where a forward has the phone's serial.
std::string ReverseForwards::Listing() const {
  std::string listing;
  for (const Forward& forward : forwards_)
    listing += "(reverse) " + forward.local + " " + forward.remote + "\n";
  return listing;
}

void ReverseForwards::AddTo(std::vector<pollfd>* waits) const {
  for (const Forward& forward : forwards_) waits->push_back({forward.listener.get(), POLLIN, 0});
}

void ReverseForwards::Accept(const pollfd& ready, int link) const {
  if (ready.revents == 0) return;
  for (const Forward& forward : forwards_) {
    if (forward.listener.get() != ready.fd) continue;
    const base::UniqueFd connection = AcceptConnection(ready.fd);
    if (connection.valid()) SendPacket(link, LinkMessage::kReverse, forward.remote, connection.get());
  }
}

}  // namespace darokleim::phone
