// What a client sends to the simulated phones' server while no phone is attached. Every request is answered or
// refused in the protocol's form, and none keeps the session.
#include <sys/socket.h>

#include <string_view>

#include "tests/fuzz/fuzz.h"
#include "tools/phone/common/io.h"
#include "tools/phone/server/client_session.h"

namespace {

using namespace darokleim::phone;

// The session has ended, so nothing more will come.
std::string TakeAnswer(const darokleim::base::UniqueFd& client) {
  std::string answer;
  char buffer[4096];
  ssize_t count;
  while ((count = ReadSome(client.get(), buffer, sizeof(buffer))) > 0)
    answer.append(buffer, static_cast<std::size_t>(count));
  return answer;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kFitsIntoASocket = 64 * 1024;
  static PhoneList phones;
  static Forwards forwards(&phones);
  if (size > kFitsIntoASocket) return 0;
  auto ends = MakeSocketPair(SOCK_STREAM);
  darokleim::sdk::Require(ends && WriteAll(ends->first.get(), data, size));
  shutdown(ends->first.get(), SHUT_WR);
  ClientSession(
      ServerRelease::kAdb34, &phones, &forwards, [] {}, &ends->second)
      .Run();
  ends->second.Reset();
  const std::string answer = TakeAnswer(ends->first);
  darokleim::sdk::Require(answer.empty() || answer.rfind("OKAY", 0) == 0 || answer.rfind("FAIL", 0) == 0);
  return 0;
}
