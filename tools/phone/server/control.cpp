#include "tools/phone/server/control.h"

#include <cstdio>
#include <stdexcept>

#include "tools/phone/common/address.h"
#include "tools/phone/common/io.h"
#include "tools/phone/common/wire.h"
#include "tools/phone/device/records.h"

namespace darokleim::phone {

namespace {

void RequireNoValue(const std::string& action, const std::string& value) {
  if (!value.empty()) throw std::invalid_argument(action + " takes no value");
}

// Changes one phone; throws std::invalid_argument.
void ChangePhone(Phone* phone, const std::string& action, const std::string& value) {
  if (action == "state") {
    const auto state = ParseConnectionState(value);
    if (!state) throw std::invalid_argument("unknown state '" + value + "'");
    phone->SetState(*state);
    return;
  }
  if (action == "fault") return phone->SwitchFaultOn(ParseFault(value));
  if (action == "clear" || action == "mend") return phone->SwitchFaultOff(value);
  RequireNoValue(action, value);
  if (action == "unplug") return phone->Unplug();
  if (action == "plug") return phone->Plug();
  if (action == "reconnect") return phone->Reconnect();
  if (action == "reboot") return phone->Reboot();
  throw std::invalid_argument("unknown action '" + action + "'");
}

std::string Describe(const Phone& phone) {
  const auto transport = phone.transport();
  std::string text = phone.serial() + "\t" +
                     (transport ? std::string(NameOf(transport->state)) : "unplugged") +
                     "\tfiles=" + phone.folder().files();
  for (const Fault& fault : phone.faults()) {
    text += "\tfault=" + fault.name;
    if (!fault.value.empty()) text += "=" + fault.value;
  }
  return text + "\n";
}

// What a phone recorded: "input" or "activities".
std::string Show(const Phone& phone, const std::string& record) {
  if (record != kInputRecord && record != kActivityRecord)
    throw std::invalid_argument("unknown record '" + record + "'");
  return ReadRegularFile(phone.folder().state(), record).value_or("");
}

std::string Execute(PhoneList* phones, const std::vector<std::string>& words) {
  if (words.size() == 1 && words[0] == "list") {
    std::string text;
    for (const auto& phone : phones->phones()) text += Describe(*phone);
    return text;
  }
  if (words.size() < 2 || words.size() > 3)
    throw std::invalid_argument("expected: SERIAL ACTION [VALUE], or list");
  Phone* phone = phones->PhoneWithSerial(words[0]);
  if (phone == nullptr) throw std::invalid_argument("no phone has the serial '" + words[0] + "'");
  const std::string value = words.size() == 3 ? words[2] : "";
  if (words[1] == "show") return Show(*phone, value);
  ChangePhone(phone, words[1], value);
  return "";
}

std::string Joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) {
    if (&word != &words.front()) text += '\0';
    text += word;
  }
  return text;
}

}  // namespace

void AnswerControl(PhoneList* phones, std::string_view words, int client) {
  try {
    SendOkayAndText(client, Execute(phones, Split(words, '\0')));
  } catch (const std::exception& error) {
    SendFail(client, error.what());
  }
}

int RunControl(uint16_t port, const std::vector<std::string>& words) {
  const base::UniqueFd server = SocketAddress::OfPort(port).Connect();
  const std::string request = "host:" + std::string(kControlPrefix) + Joined(words);
  char verdict[4];
  if (!server.valid() || !SendText(server.get(), request) ||
      !ReadExactly(server.get(), verdict, sizeof(verdict))) {
    std::fprintf(stderr, "darokleim-phone: no server on port %u\n", static_cast<unsigned>(port));
    return 1;
  }
  const std::string text = ReadRequest(server.get()).value_or("");
  if (std::string_view(verdict, sizeof(verdict)) != "OKAY") {
    std::fprintf(stderr, "darokleim-phone: %s\n", text.c_str());
    return 1;
  }
  std::fputs(text.c_str(), stdout);
  return 0;
}

std::string ControlHelp() {
  std::string help =
      "list: every phone with its state, folder and faults\n"
      "SERIAL unplug | plug | reconnect | reboot\n"
      "SERIAL state STATE: as after --phone\n"
      "SERIAL show input | show activities: the text that was typed, the activities that were started\n"
      "SERIAL fault NAME[=VALUE] | clear NAME: switches a fault on or off, where NAME is\n";
  for (const auto& [name, meaning] : DescribedFaults())
    help.append("  ").append(name).append(": ").append(meaning).append("\n");
  return help;
}

}  // namespace darokleim::phone
