// What the simulated phone reads of its clients, its files and its user's words. The packets of a shell are the
// same however the stream was cut.
#include <stdexcept>
#include <utility>
#include <vector>

#include "tests/fuzz/fuzz.h"
#include "tools/phone/common/address.h"
#include "tools/phone/common/faults.h"
#include "tools/phone/device/packages/binary_xml.h"
#include "tools/phone/device/records.h"
#include "tools/phone/device/shell_packets.h"
#include "tools/phone/device/shell_service.h"
#include "tools/phone/server/phone_options.h"

namespace {

using namespace darokleim::phone;

struct Heard {
  std::vector<std::pair<ShellPacket, std::string>> packets;
  bool is_protocol = true;
  bool operator==(const Heard&) const = default;
};

// In pieces of this size. Input comes as it arrives, so that of neighbouring packets is joined.
Heard Hear(const std::string& bytes, std::size_t piece) {
  Heard heard;
  ShellPacketReader reader;
  for (std::size_t at = 0; at < bytes.size() && heard.is_protocol; at += piece) {
    heard.is_protocol =
        reader.Feed(std::string_view(bytes).substr(at, piece), [&](ShellPacket kind, std::string_view data) {
          const bool joins =
              kind == ShellPacket::kInput && !heard.packets.empty() && heard.packets.back().first == kind;
          if (joins) {
            heard.packets.back().second += data;
          } else {
            heard.packets.emplace_back(kind, data);
          }
        });
  }
  return heard;
}

void ParseOptions(const std::string& text) {
  try {
    ParsePhoneOptions(text);
  } catch (const std::invalid_argument&) {
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = darokleim::sdk::Text(data, size);
  const Heard whole = Hear(text, text.size() + 1);
  for (const std::size_t piece : {std::size_t{1}, std::size_t{2}, std::size_t{7}})
    darokleim::sdk::Require(Hear(text, piece) == whole);
  for (const bool legacy : {false, true}) ParseShellService(text, legacy);
  ParseOptions(text);
  ParseBinaryXml(text);
  ParseLogLine(text);
  ParseSize(text);
  SocketAddress::Parse(text);
  return 0;
}
