#include "tools/cli/command_line/unfinished_line.h"

#include <algorithm>

namespace darokleim::cli {
namespace {

using ValueFunction = std::function<void(const Argument&, const std::string&)>;

bool IsNamed(const Argument& option, const std::string& word) {
  const bool is_long = word.substr(0, 2) == "--";
  const auto& names = is_long ? option.long_names() : option.short_names();
  return std::find(names.begin(), names.end(), word.substr(is_long ? 2 : 1)) != names.end();
}

// Of the command or one of those around it.
const Argument* FindOption(const Command* command, const std::string& word) {
  for (; command != nullptr; command = command->parent()) {
    for (const auto* option : command->Options()) {
      if (IsNamed(*option, word)) return option;
    }
  }
  return nullptr;
}

class Walk {
 public:
  Walk(const Command& root, const ValueFunction& on_value) : on_value_(on_value) { place_.command = &root; }

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
    if (!place_.after_option) place_.values = NextPositionals();
    return place_;
  }

 private:
  void TakeValue(const std::string& word) {
    if (word == "=") return;  // bash has split --option=value
    on_value_(*place_.values.front(), word);
    place_.values.clear();
    place_.after_option = false;
  }

  void TakeOption(const std::string& word) {
    const auto equals = word.find('=');
    const auto* option = FindOption(place_.command, word.substr(0, equals));
    if (option == nullptr || !option->takes_value()) return;
    if (equals != std::string::npos) {
      on_value_(*option, word.substr(equals + 1));
    } else {
      place_.values = {option};
      place_.after_option = true;
    }
  }

  void TakeName(const std::string& word) {
    const auto* subcommand = place_.only_positionals ? nullptr : place_.command->Find(word);
    if (subcommand != nullptr) {
      place_.command = subcommand;
      positionals_ = 0;
    } else {
      ++positionals_;
    }
  }

  // After the first word of one that takes any number, the next word may also be for those after it.
  std::vector<const Argument*> NextPositionals() const {
    auto next = place_.command->Positionals();
    std::size_t words = positionals_;
    while (words > 0 && !next.empty() && !next.front()->takes_several_words()) {
      next.erase(next.begin());
      --words;
    }
    const bool may_be_later = words > 0;
    if (!may_be_later && next.size() > 1) next.erase(next.begin() + 1, next.end());
    return next;
  }

  const ValueFunction& on_value_;
  CommandLinePlace place_;
  std::size_t positionals_ = 0;
};

}  // namespace

CommandLinePlace FindPlace(const Command& root, const std::vector<std::string>& words,
                           const ValueFunction& on_value) {
  Walk walk(root, on_value);
  for (const auto& word : words) walk.Take(word);
  return walk.End();
}

}  // namespace darokleim::cli
