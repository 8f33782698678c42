#include "tools/cli/command_line/parse.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <vector>

#include "tools/cli/command_line/help.h"
#include "tools/cli/command_line/suggestion.h"
#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

using Words = std::vector<std::string>;

bool IsAnOption(const std::string& word) {
  return word.size() > 1 && word.front() == '-';
}

const Argument* FindNamed(const Command* command, const std::string& name, bool is_long) {
  for (; command != nullptr; command = command->parent()) {
    for (const auto* option : command->Options()) {
      const auto& names = is_long ? option->long_names() : option->short_names();
      if (std::find(names.begin(), names.end(), name) != names.end()) return option;
    }
  }
  return nullptr;
}

// The long options that may be given with the command.
Words LongOptions(const Command* command) {
  Words names = {"--help"};
  for (; command != nullptr; command = command->parent()) {
    for (const auto* option : command->Options()) {
      for (const auto& name : option->long_names()) names.push_back("--" + name);
    }
  }
  return names;
}

class Parser {
 public:
  Parser(const Command& root, const std::string& version) : version_(version), command_(&root) {}

  ParsedLine Parse(Words words) try {
    for (next_ = words.begin(), end_ = words.end(); next_ != end_ && text_.empty();) Take(*next_++);
    if (!text_.empty()) return {text_, nullptr};
    if (!command_->subcommands().empty() && !command_->has_action()) return WithoutCommand();
    Check();
    for (const auto& [argument, values] : values_) Give(*argument, values);
    GivePositionals();
    return {"", command_};
  } catch (const UsageError& error) {
    throw UsageError(std::string(error.what()) + "\n" + HelpHint(*command_));
  }

 private:
  void Take(const std::string& word) {
    if (only_words_ || !IsAnOption(word)) {
      TakeWord(word);
    } else if (word == "--") {
      only_words_ = true;
    } else if (word == "--help" || word == "-h") {
      text_ = HelpText(*command_);
    } else if (word.substr(0, 2) == "--") {
      TakeLong(word);
    } else {
      TakeShort(word);
    }
  }

  void TakeWord(const std::string& word) {
    if (command_->subcommands().empty()) {
      positionals_.push_back(word);
      const auto positionals = command_->Positionals();
      only_words_ = only_words_ || (!positionals.empty() && positionals.front()->takes_the_rest());
      return;
    }
    const Command* const subcommand = command_->Find(word);
    if (subcommand == nullptr) {
      throw UsageError("\"" + word + "\" is not a command." + Suggestion(word, command_->Subcommands()));
    }
    command_ = subcommand;
  }

  void TakeLong(const std::string& word) {
    const std::size_t equals = word.find('=');
    const std::string name = word.substr(0, equals);
    const Argument* const option = FindNamed(command_, name.substr(2), true);
    if (option == nullptr) {
      throw UsageError(name + " is not an option." + Suggestion(name, LongOptions(command_)));
    }
    if (equals == std::string::npos) return TakeOption(*option, name);
    if (!option->takes_value()) throw UsageError(name + " takes no value.");
    values_[option].push_back(word.substr(equals + 1));
  }

  // Several flags may share a hyphen; the value of an option may follow its letter.
  void TakeShort(const std::string& word) {
    for (std::size_t i = 1; i < word.size(); ++i) {
      const Argument* const option = FindNamed(command_, word.substr(i, 1), false);
      if (option == nullptr) {
        const bool may_be_long = word.size() > 2;
        throw UsageError("-" + word.substr(i, 1) + " is not an option." +
                         (may_be_long ? Suggestion("-" + word, LongOptions(command_)) : ""));
      }
      if (option->takes_value() && i + 1 < word.size()) {
        values_[option].push_back(word.substr(i + 1));
        return;
      }
      TakeOption(*option, "-" + word.substr(i, 1));
    }
  }

  void TakeOption(const Argument& option, const std::string& name) {
    if (option.is_version()) {
      text_ = version_ + "\n";
      return;
    }
    Words& values = values_[&option];
    if (!option.takes_value()) return;
    if (next_ == end_) throw UsageError(name + " needs a value, " + option.value_name() + ".");
    values.push_back(*next_++);
  }

  ParsedLine WithoutCommand() const {
    if (command_->parent() == nullptr) return {HelpText(*command_), nullptr};
    std::string names;
    for (const auto& name : command_->Subcommands()) names += (names.empty() ? "" : ", ") + name;
    throw UsageError(command_->FullName() + " needs a command: " + names + ".");
  }

  void Check() const {
    for (const auto& [argument, values] : values_) {
      for (const auto* other : argument->excluded()) {
        if (values_.count(other) != 0) {
          throw UsageError(argument->DisplayName() + " and " + other->DisplayName() + " exclude each other.");
        }
      }
    }
    for (const auto* option : command_->Options()) {
      if (option->is_required() && values_.count(option) == 0) {
        throw UsageError(option->DisplayName() + " is missing.");
      }
    }
  }

  static void Give(const Argument& argument, const Words& values) {
    if (!argument.takes_value()) argument.SetFlag();
    for (const auto& value : values) argument.Take(value);
  }

  // One that takes any number of words leaves as many to those after it as they need, and one to each that takes one, as
  // long as it keeps as many as it needs itself.
  void GivePositionals() const {
    const auto positionals = command_->Positionals();
    std::size_t next = 0;
    for (std::size_t i = 0; i < positionals.size(); ++i) {
      const auto& positional = *positionals[i];
      const auto least = static_cast<std::size_t>(positional.least_words());
      const std::size_t left = positionals_.size() - next;
      const std::size_t later = positionals.size() - i - 1;
      std::size_t count = std::min<std::size_t>(left, 1);
      if (positional.takes_several_words())
        count = std::max(left - std::min(left, later), std::min(left, least));
      if (count < least) throw UsageError(Missing(positional, count));
      for (; count > 0; --count) positional.Take(positionals_[next++]);
    }
    if (next < positionals_.size()) {
      throw UsageError("\"" + positionals_[next] + "\" is one argument too many.");
    }
  }

  static std::string Missing(const Argument& positional, std::size_t count) {
    if (count == 0) return positional.DisplayName() + " is missing.";
    return positional.DisplayName() + " needs " + std::to_string(positional.least_words()) +
           " words at least.";
  }

  std::string version_;
  const Command* command_;
  Words::const_iterator next_, end_;
  std::string text_;
  bool only_words_ = false;
  std::map<const Argument*, Words> values_;  // an entry without words for a flag
  Words positionals_;
};

}  // namespace

ParsedLine ParseCommandLine(const Command& root, const std::string& version, int argc,
                            const char* const* argv) {
  return Parser(root, version).Parse({argv + std::min(argc, 1), argv + argc});
}

}  // namespace darokleim::cli
