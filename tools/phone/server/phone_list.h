#ifndef DAROKLEIM_TOOLS_PHONE_SERVER_PHONE_LIST_H
#define DAROKLEIM_TOOLS_PHONE_SERVER_PHONE_LIST_H

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "tools/phone/server/change_feed.h"
#include "tools/phone/server/phone.h"

namespace darokleim::phone {

// Which phone a request is for.
struct Target {
  enum class Kind { kAny, kUsb, kNetwork, kSerial, kId };
  Kind kind = Kind::kAny;
  std::string serial;
  uint64_t id = 0;
};

// A phone found, or why there is none in the words of the adb server.
struct Found {
  Phone* phone = nullptr;
  Transport transport;
  std::string error;
};

// The phones of one server. They are all added before the server answers its first request.
class PhoneList {
 public:
  using Reversed = std::function<void(const std::string& address, base::UniqueFd connection)>;
  using Detached = std::function<void(const std::string& serial)>;

  // Throws std::runtime_error or std::invalid_argument.
  void Add(const PhoneOptions& options, const SandboxParts* parts, Reversed reversed, Detached detached);
  // False, after a line on stderr, when a phone does not boot.
  bool SwitchAllOn();
  void SwitchAllOff();

  // With `any_state` also a phone that would refuse commands.
  Found Find(const Target& target, bool any_state = false) const;
  // By serial, attached or not; null when there is none.
  Phone* PhoneWithSerial(const std::string& serial) const;
  const std::vector<std::unique_ptr<Phone>>& phones() const { return phones_; }

  // The lines of `adb devices`, or of `adb devices -l`.
  std::string Listing(bool with_details) const;

  ChangeFeed& changes() { return changes_; }

 private:
  std::vector<Transport> Attached() const;

  ChangeFeed changes_;
  std::atomic<uint64_t> last_transport_id_{0};
  std::vector<std::unique_ptr<Phone>> phones_;
};

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_SERVER_PHONE_LIST_H
