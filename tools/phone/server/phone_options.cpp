#include "server/phone_options.h"

#include <stdexcept>
#include <vector>

#include "common/wire.h"

namespace darokleim::phone {

namespace {

Generation ParseGeneration(const std::string& name) {
  if (name == "legacy") return Generation::kLegacy;
  if (name == "modern") return Generation::kModern;
  throw std::invalid_argument("android is legacy or modern, not '" + name + "'");
}

void SetOption(PhoneOptions* options, const std::string& key, const std::string& value) {
  if (key == "state") {
    const auto state = ParseConnectionState(value);
    if (!state) throw std::invalid_argument("unknown state '" + value + "'");
    options->state = *state;
  } else if (key == "android") {
    options->generation = ParseGeneration(value);
  } else if (key == "root") {
    options->root = value;
  } else if (key == "card") {
    options->cards.push_back(value);
  } else if (key == "fault") {
    options->faults.push_back(ParseFault(value));
  } else {
    throw std::invalid_argument("unknown setting '" + key + "'");
  }
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
