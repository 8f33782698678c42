#include "tools/phone/server/phone_options.h"

#include <algorithm>
#include <functional>
#include <map>
#include <stdexcept>
#include <vector>

#include "tools/phone/common/wire.h"
#include "tools/phone/server/profile.h"

namespace darokleim::phone {

namespace {

Generation ParseGeneration(const std::string& name) {
  if (name == "legacy") return Generation::kLegacy;
  if (name == "modern") return Generation::kModern;
  throw std::invalid_argument("android is legacy or modern, not '" + name + "'");
}

std::string OneOf(const std::string& key, const std::string& value, const std::vector<std::string>& allowed) {
  if (std::find(allowed.begin(), allowed.end(), value) != allowed.end()) return value;
  std::string names;
  for (const std::string& name : allowed) names += (names.empty() ? "" : ", ") + name;
  throw std::invalid_argument(key + " is one of " + names + ", not '" + value + "'");
}

ConnectionState ParseState(const std::string& name) {
  const auto state = ParseConnectionState(name);
  if (!state) throw std::invalid_argument("unknown state '" + name + "'");
  return *state;
}

std::string CardName(const std::string& name) {
  if (name.empty() || name[0] == '.' || name.find('/') != std::string::npos) {
    throw std::invalid_argument("'" + name + "' cannot be the name of a card");
  }
  return name;
}

using Setter = std::function<void(PhoneOptions*, const std::string& value)>;

const std::map<std::string, Setter>& Setters() {
  static const std::map<std::string, Setter> setters = {
      {"state", [](PhoneOptions* options, const std::string& value) { options->state = ParseState(value); }},
      {"android",
       [](PhoneOptions* options, const std::string& value) { options->generation = ParseGeneration(value); }},
      {"root", [](PhoneOptions* options, const std::string& value) { options->root = value; }},
      {"card",
       [](PhoneOptions* options, const std::string& value) { options->cards.push_back(CardName(value)); }},
      {"fault",
       [](PhoneOptions* options, const std::string& value) { options->faults.push_back(ParseFault(value)); }},
      {"profile",
       [](PhoneOptions* options, const std::string& value) {
         options->profile = OneOf("profile", value, ProfileNames());
       }},
      {"encryption",
       [](PhoneOptions* options, const std::string& value) {
         options->encryption = OneOf("encryption", value, {"file", "block", "none"});
       }},
      {"su",
       [](PhoneOptions* options, const std::string& value) {
         options->su = OneOf("su", value, {"bin", "xbin"});
       }},
      {"tools",
       [](PhoneOptions* options, const std::string& value) {
         options->tools = OneOf("tools", value, {"toolbox", "toybox"});
       }},
      {"storage",
       [](PhoneOptions* options, const std::string& value) {
         options->storage = OneOf("storage", value, {"emulated", "sdcard0", "sdcard1"});
       }},
      {"group",
       [](PhoneOptions* options, const std::string& value) {
         options->storage_group = OneOf("group", value, {"sdcard_rw", "sdcard_r", "media_rw", "everybody"});
       }},
  };
  return setters;
}

void SetOption(PhoneOptions* options, const std::string& key, const std::string& value) {
  std::string_view property = key;
  if (TakePrefix(&property, "prop.")) {
    options->properties[std::string(property)] = value;
    return;
  }
  const auto setter = Setters().find(key);
  if (setter == Setters().end()) throw std::invalid_argument("unknown setting '" + key + "'");
  setter->second(options, value);
}

}  // namespace

PhoneOptions ParsePhoneOptions(const std::string& text) {
  const std::vector<std::string> pieces = Split(text, ',');
  PhoneOptions options;
  options.serial = pieces.front();
  if (options.serial.empty() || options.serial.find_first_of(" \t\n/") != std::string::npos) {
    throw std::invalid_argument("'" + options.serial + "' cannot be a serial");
  }
  for (size_t i = 1; i < pieces.size(); ++i) {
    const size_t equals = pieces[i].find('=');
    if (equals == std::string::npos) {
      throw std::invalid_argument("'" + pieces[i] + "' is not of the form key=value");
    }
    SetOption(&options, pieces[i].substr(0, equals), pieces[i].substr(equals + 1));
  }
  return options;
}

}  // namespace darokleim::phone
