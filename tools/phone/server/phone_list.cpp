#include "tools/phone/server/phone_list.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <thread>
#include <tuple>
#include <utility>

namespace darokleim::phone {

namespace {

bool Matches(const Target& target, const Transport& transport) {
  switch (target.kind) {
    case Target::Kind::kAny:
      return true;
    case Target::Kind::kUsb:
      return !transport.over_network;
    case Target::Kind::kNetwork:
      return transport.over_network;
    case Target::Kind::kSerial:
      return transport.serial == target.serial || "product:" + transport.product == target.serial ||
             "model:" + transport.model == target.serial || "device:" + transport.device == target.serial ||
             (!transport.bus.empty() && transport.bus == target.serial);
    case Target::Kind::kId:
      return transport.id == target.id;
  }
  return false;
}

std::string NoneMessage(const Target& target) {
  switch (target.kind) {
    case Target::Kind::kUsb:
      return "no devices found";
    case Target::Kind::kNetwork:
      return "no emulators found";
    case Target::Kind::kSerial:
      return "device '" + target.serial + "' not found";
    case Target::Kind::kId:
      return "no device with transport id '" + std::to_string(target.id) + "'";
    case Target::Kind::kAny:
      break;
  }
  return "no devices/emulators found";
}

std::string SeveralMessage(const Target& target) {
  switch (target.kind) {
    case Target::Kind::kAny:
      return "more than one device/emulator";
    case Target::Kind::kNetwork:
      return "more than one emulator";
    default:
      return "more than one device";
  }
}

void AppendDetail(const char* key, const std::string& value, std::string* line) {
  if (!value.empty()) line->append(" ").append(key).append(value);
}

std::string Details(const Transport& transport) {
  std::string line;
  AppendDetail("", transport.bus, &line);
  AppendDetail("product:", transport.product, &line);
  AppendDetail("model:", transport.model, &line);
  AppendDetail("device:", transport.device, &line);
  AppendDetail("transport_id:", std::to_string(transport.id), &line);
  return line;
}

}  // namespace

void PhoneList::Add(const PhoneOptions& options, const SandboxParts* parts, Reversed reversed,
                    Detached detached) {
  if (PhoneWithSerial(options.serial) != nullptr) {
    throw std::runtime_error("two phones have the serial " + options.serial);
  }
  Phone::Events events{[this] { changes_.Notify(); },
                       [detached = std::move(detached), serial = options.serial] { detached(serial); },
                       [this] { return ++last_transport_id_; }, std::move(reversed)};
  phones_.push_back(std::make_unique<Phone>(options, phones_.size() + 1, parts, std::move(events)));
}

bool PhoneList::SwitchAllOn() {
  for (const auto& phone : phones_) phone->BeginToSwitchOn();
  return std::all_of(phones_.begin(), phones_.end(), [](const auto& phone) {
    if (phone->WaitUntilOn()) return true;
    std::fprintf(
        stderr,
        "darokleim-phone: %s does not start; bubblewrap (bwrap) must be allowed to make user namespaces\n",
        phone->serial().c_str());
    return false;
  });
}

void PhoneList::SwitchAllOff() {
  for (const auto& phone : phones_) phone->BeginToSwitchOff();
  for (const auto& phone : phones_) phone->SwitchOff();
}

Found PhoneList::Find(const Target& target, bool any_state) const {
  Found found;
  for (const auto& phone : phones_) {
    auto transport = phone->transport();
    if (!transport || !Matches(target, *transport)) continue;
    if (found.phone != nullptr) return {nullptr, {}, SeveralMessage(target)};
    found.phone = phone.get();
    found.transport = std::move(*transport);
  }
  if (found.phone == nullptr) return {nullptr, {}, NoneMessage(target)};
  const std::string_view refusal = RefusalOf(found.transport.state);
  if (!any_state && !refusal.empty()) return {nullptr, {}, std::string(refusal)};
  return found;
}

Phone* PhoneList::PhoneWithSerial(const std::string& serial) const {
  for (const auto& phone : phones_) {
    if (phone->serial() == serial) return phone.get();
  }
  return nullptr;
}

std::string PhoneList::Listing(bool with_details) const {
  std::string listing;
  for (const Transport& transport : Attached()) {
    std::string line = transport.serial;
    if (with_details) {
      constexpr size_t kSerialColumn = 22;
      line.resize(std::max(line.size(), kSerialColumn), ' ');
      line.append(" ").append(WordsOf(transport.state)).append(Details(transport));
    } else {
      line.append("\t").append(WordsOf(transport.state));
    }
    listing += line + "\n";
  }
  return listing;
}

std::vector<Transport> PhoneList::Attached() const {
  std::vector<Transport> attached;
  for (const auto& phone : phones_) {
    if (auto transport = phone->transport()) attached.push_back(std::move(*transport));
  }
  std::sort(attached.begin(), attached.end(), [](const Transport& one, const Transport& other) {
    return std::tie(one.over_network, one.serial) < std::tie(other.over_network, other.serial);
  });
  return attached;
}

}  // namespace darokleim::phone
