#include <cstdio>
#include <string>

#include "tools/phone/common/faults.h"
#include "tools/phone/device/layout.h"
#include "tools/phone/device/programs/programs.h"
#include "tools/phone/device/properties.h"

namespace darokleim::phone {

namespace {

struct Interface {
  std::string name;
  std::string head;  // flags and link layer
  std::string inet;  // address/prefix and scope; empty when it has none
};

std::vector<Interface> Interfaces() {
  std::vector<Interface> interfaces = {
      {"lo",
       "1: lo: <LOOPBACK,UP,LOWER_UP> mtu 65536 qdisc noqueue state UNKNOWN group default qlen 1000\n"
       "    link/loopback 00:00:00:00:00:00 brd 00:00:00:00:00:00\n",
       "127.0.0.1/8 scope host lo"}};
  const std::string address = Property("dhcp.wlan0.ipaddress");
  const bool connected = !address.empty() && !Faults(kSetupFolder).Has(fault::kNoWifi);
  const std::string network = address.substr(0, address.rfind('.'));
  interfaces.push_back(
      {"wlan0",
       std::string("2: wlan0: <") +
           (connected ? "BROADCAST,MULTICAST,UP,LOWER_UP" : "NO-CARRIER,BROADCAST,MULTICAST,UP") +
           "> mtu 1500 qdisc mq state " + (connected ? "UP" : "DOWN") +
           " group default qlen 3000\n    link/ether 02:00:00:44:55:66 brd ff:ff:ff:ff:ff:ff\n",
       connected ? address + "/24 brd " + network + ".255 scope global wlan0" : ""});
  return interfaces;
}

void PrintAddresses(const std::string& only, bool inet_only) {
  for (const Interface& interface : Interfaces()) {
    if (!only.empty() && interface.name != only) continue;
    if (inet_only && interface.inet.empty()) continue;
    std::string head = interface.head;
    if (inet_only) head = head.substr(0, head.find('\n') + 1);
    std::printf("%s", head.c_str());
    if (interface.inet.empty()) continue;
    std::printf("    inet %s\n       valid_lft forever preferred_lft forever\n", interface.inet.c_str());
  }
}

void PrintRoutes() {
  for (const Interface& interface : Interfaces()) {
    if (interface.name == "lo" || interface.inet.empty()) continue;
    const std::string address = interface.inet.substr(0, interface.inet.find('/'));
    std::printf("%s.0/24 dev %s proto kernel scope link src %s\n",
                address.substr(0, address.rfind('.')).c_str(), interface.name.c_str(), address.c_str());
  }
}

bool IsAbbreviationOf(const std::string& word, const std::string& whole) {
  return !word.empty() && whole.compare(0, word.size(), word) == 0;
}

}  // namespace

// ip [-4|-f inet] address|route|link [show] [[dev] INTERFACE]
int RunIp(const Words& words) {
  bool inet_only = false;
  std::string object;
  std::string interface;
  for (const std::string& word : words) {
    if (word == "-4" || word == "inet") {
      inet_only = true;
    } else if (object.empty() && word[0] != '-') {
      object = word;
    } else if (word[0] != '-' && word != "show" && word != "list" && word != "dev") {
      interface = word;
    }
  }
  bool known = interface.empty();
  for (const Interface& each : Interfaces()) known = known || each.name == interface;
  if (!known) {
    std::fprintf(stderr, "Device \"%s\" does not exist.\n", interface.c_str());
    return 1;
  }
  if (IsAbbreviationOf(object, "address") || object == "addr") {
    PrintAddresses(interface, inet_only);
  } else if (IsAbbreviationOf(object, "route")) {
    PrintRoutes();
  } else if (IsAbbreviationOf(object, "link")) {
    for (const Interface& each : Interfaces()) {
      if (interface.empty() || each.name == interface) std::printf("%s", each.head.c_str());
    }
  } else {
    std::fprintf(stderr, "Object \"%s\" is unknown, try \"ip help\".\n", object.c_str());
    return 1;
  }
  return 0;
}

}  // namespace darokleim::phone
