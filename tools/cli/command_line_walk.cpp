#include "tools/cli/command_line_walk.h"

#include <algorithm>

namespace darokleim::cli {
namespace {

const CLI::App* FindSubcommand(const CLI::App& command, const std::string& name) {
  for (const auto* subcommand : command.get_subcommands([](const CLI::App*) { return true; })) {
    if (subcommand->check_name(name)) return subcommand;
  }
  return nullptr;
}

// Also one of the commands around it.
const CLI::Option* FindOption(const CLI::App* command, const std::string& name) {
  for (; command != nullptr; command = command->get_parent()) {
    if (const auto* option = command->get_option_no_throw(name)) return option;
  }
  return nullptr;
}

bool TakesValue(const CLI::Option& option) {
  return option.get_items_expected_max() > 0;
}

class Walk {
 public:
  Walk(const CLI::App& root, const std::function<void(const CLI::Option&, const std::string&)>& on_value)
      : on_value_(on_value) {
    place_.command = &root;
  }

  void Take(const std::string& word) {
    if (place_.after_option) {
      TakeValue(word);
    } else if (!place_.only_positionals && word == "--") {
      place_.only_positionals = true;
    } else if (!place_.only_positionals && word.size() > 1 && word.front() == '-') {
      TakeOption(word);
    } else {
      TakeName(word);
    }
  }

  CommandLinePlace End() {
    if (!place_.after_option) place_.value = NextPositional();
    return place_;
  }

 private:
  void TakeValue(const std::string& word) {
    if (word == "=") return;  // bash has split --option=value
    on_value_(*place_.value, word);
    place_.after_option = false;
  }

  void TakeOption(const std::string& word) {
    const auto equals = word.find('=');
    const auto* option = FindOption(place_.command, word.substr(0, equals));
    if (option == nullptr || !TakesValue(*option)) return;
    if (equals != std::string::npos) {
      on_value_(*option, word.substr(equals + 1));
    } else {
      place_.value = option;
      place_.after_option = true;
    }
  }

  void TakeName(const std::string& word) {
    const auto* subcommand = place_.only_positionals ? nullptr : FindSubcommand(*place_.command, word);
    if (subcommand != nullptr) {
      place_.command = subcommand;
      positionals_ = 0;
    } else {
      ++positionals_;
    }
  }

  // The last one may take any number of words.
  const CLI::Option* NextPositional() const {
    const auto positionals = Positionals(*place_.command);
    if (positionals.empty()) return nullptr;
    const auto last = positionals.size() - 1;
    if (positionals_ > last && positionals[last]->get_items_expected_max() <= 1) return nullptr;
    return positionals[std::min(positionals_, last)];
  }

  const std::function<void(const CLI::Option&, const std::string&)>& on_value_;
  CommandLinePlace place_{};
  std::size_t positionals_ = 0;
};

}  // namespace

CommandLinePlace WalkCommandLine(
    const CLI::App& root, const std::vector<std::string>& words,
    const std::function<void(const CLI::Option& option, const std::string& value)>& on_value) {
  Walk walk(root, on_value);
  for (const auto& word : words) walk.Take(word);
  return walk.End();
}

std::vector<const CLI::App*> ShownSubcommands(const CLI::App& command) {
  std::vector<const CLI::App*> shown;
  for (const auto* subcommand : command.get_subcommands([](const CLI::App*) { return true; })) {
    if (!subcommand->get_group().empty()) shown.push_back(subcommand);
  }
  return shown;
}

std::vector<const CLI::Option*> ShownOptions(const CLI::App& command) {
  std::vector<const CLI::Option*> shown;
  for (const auto* option : command.get_options()) {
    if (option->nonpositional() && !option->get_group().empty()) shown.push_back(option);
  }
  return shown;
}

std::vector<const CLI::Option*> Positionals(const CLI::App& command) {
  std::vector<const CLI::Option*> positionals;
  for (const auto* option : command.get_options()) {
    if (option->get_positional()) positionals.push_back(option);
  }
  return positionals;
}

}  // namespace darokleim::cli
