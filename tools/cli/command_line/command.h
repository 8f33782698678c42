// The command line as data: the commands and their arguments. Parsing, help, completion and the manual page are all
// made from it.
#ifndef DAROKLEIM_TOOLS_CLI_COMMAND_LINE_COMMAND_H
#define DAROKLEIM_TOOLS_CLI_COMMAND_LINE_COMMAND_H

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tools/cli/command_line/argument_types.h"

namespace darokleim::cli {

class Tool;

// A positional argument, an option with a value, or a flag.
class Argument {
 public:
  enum class Form { kPositional, kOption, kFlag, kVersion };

  // `names` of a positional argument is its one name in capitals; of others as "-s,--serial".
  Argument(Form form, const std::string& names, const Binding& binding, const std::string& help);

  // Settings. Each returns the argument, so that they can be chained.

  Argument& Required();
  Argument& AtLeast(int words);
  // What help calls the option's value, where the type's own name says too little.
  Argument& Called(std::string value_name);
  Argument& OneOf(std::vector<std::string> values);
  Argument& Between(int low, int high);
  // Shown in help; the variable itself holds the default value.
  Argument& Default(std::string text);
  // From its first word on, every word is one of its words, whatever it looks like.
  Argument& TakesTheRest();
  Argument& Excludes(const Argument& other);

  // For parsing, help and completion.

  bool is_positional() const { return form_ == Form::kPositional; }
  bool is_version() const { return form_ == Form::kVersion; }
  bool takes_value() const { return form_ == Form::kPositional || form_ == Form::kOption; }
  // Without their hyphens; a positional argument has one long name.
  const std::vector<std::string>& long_names() const { return long_names_; }
  const std::vector<std::string>& short_names() const { return short_names_; }
  // For messages: "PATH", "--serial".
  std::string DisplayName() const;
  const std::string& help() const { return help_; }
  const std::string& value_name() const { return value_name_; }
  const std::vector<std::string>& values() const { return values_; }
  const std::string& default_text() const { return default_text_; }
  ValueKind kind() const { return binding_.kind; }
  bool is_required() const { return least_words_ > 0; }
  bool is_repeatable() const { return binding_.takes_several; }
  bool takes_several_words() const { return is_positional() && is_repeatable(); }
  int least_words() const { return least_words_; }
  bool takes_the_rest() const { return takes_the_rest_; }
  const std::vector<const Argument*>& excluded() const { return excluded_; }

  // Gives one word to the variable. Throws UsageError, with the argument's name, for a word that is not valid.
  void Take(const std::string& word) const;
  void SetFlag() const { *static_cast<bool*>(binding_.value) = true; }

 private:
  void CheckAllowed(const std::string& word) const;

  Form form_;
  std::vector<std::string> long_names_, short_names_;
  Binding binding_;
  std::string help_, value_name_, default_text_;
  std::vector<std::string> values_;
  std::pair<int, int> range_{0, 0};  // both 0: any number
  int least_words_ = 0;
  bool takes_the_rest_ = false;
  std::vector<const Argument*> excluded_;
};

struct CommandText {
  const char* name;
  const char* description;  // one line
  const char* footer;       // examples and what else --help says
};

class Command {
 public:
  explicit Command(const CommandText& text)
      : name_(text.name), description_(text.description), footer_(text.footer) {}
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;

  // Arguments. The variables must live as long as the command; a vector takes any number of values.

  template <typename T>
  Argument& Positional(const char* name, T& value, const std::string& help) {
    return Add(Argument::Form::kPositional, name, BindingTo(value), help);
  }
  // For an argument whose type is known only when the tool runs.
  Argument& PositionalOf(const Binding& binding, const char* name, const std::string& help) {
    return Add(Argument::Form::kPositional, name, binding, help);
  }
  template <typename T>
  Argument& Option(const char* names, T& value, const std::string& help) {
    return Add(Argument::Form::kOption, names, BindingTo(value), help);
  }
  Argument& Flag(const char* names, bool& value, const std::string& help);
  // --utc
  Argument& UtcFlag(bool& utc);
  // --version, which prints what ParseCommandLine was given for it.
  Argument& VersionFlag();
  // PACKAGE, required.
  Argument& PackageArgument(Package& package);

  // Subcommands, in the order of help. One of them must follow, unless the command itself does something, too.
  Command& Subcommand(const CommandText& text);
  Command& Alias(const char* name);
  // Left out of help, completion and the manual page.
  Command& Hide();
  void OnRun(std::function<void(Tool&)> action) { action_ = std::move(action); }

  const std::string& name() const { return name_; }
  // With the names of the commands around it: "darokleim app list".
  std::string FullName() const;
  const std::string& description() const { return description_; }
  const std::string& footer() const { return footer_; }
  const std::vector<std::string>& aliases() const { return aliases_; }
  bool is_hidden() const { return is_hidden_; }
  const Command* parent() const { return parent_; }
  const std::vector<std::unique_ptr<Command>>& subcommands() const { return subcommands_; }
  const std::vector<std::unique_ptr<Argument>>& arguments() const { return arguments_; }
  // The names of the subcommands that help lists.
  std::vector<std::string> Subcommands() const;
  std::vector<const Argument*> Positionals() const;
  std::vector<const Argument*> Options() const;  // flags included
  // Whether the word names this command.
  bool IsCalled(const std::string& word) const;
  bool has_action() const { return action_ != nullptr; }
  // The subcommand of that name; null when there is none.
  const Command* Find(const std::string& word) const;
  void Run(Tool& tool) const { action_(tool); }

 private:
  Argument& Add(Argument::Form form, const char* names, const Binding& binding, const std::string& help);

  std::string name_, description_, footer_;
  std::vector<std::string> aliases_;
  bool is_hidden_ = false;
  const Command* parent_ = nullptr;
  std::vector<std::unique_ptr<Argument>> arguments_;
  std::vector<std::unique_ptr<Command>> subcommands_;
  std::function<void(Tool&)> action_;
};

// A subcommand whose values are an Options: `describe` binds its members to arguments, `run` carries the command out.
template <typename Options>
Command& AddCommand(Command& parent, const CommandText& text,
                    void (*describe)(Command& command, Options& options),
                    void (*run)(Tool& tool, const Options& options)) {
  Command& command = parent.Subcommand(text);
  const auto options = std::make_shared<Options>();
  describe(command, *options);
  command.OnRun([options, run](Tool& tool) { run(tool, *options); });
  return command;
}

// A subcommand without arguments of its own.
inline Command& AddCommand(Command& parent, const CommandText& text, void (*run)(Tool& tool)) {
  Command& command = parent.Subcommand(text);
  command.OnRun(run);
  return command;
}

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMAND_LINE_COMMAND_H
