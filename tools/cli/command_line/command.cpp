#include "tools/cli/command_line/command.h"

#include <algorithm>
#include <string_view>

#include "tools/cli/command_line/suggestion.h"
#include "tools/cli/errors.h"

namespace darokleim::cli {

Argument::Argument(Form form, const std::string& names, const Binding& binding, const std::string& help)
    : form_(form), binding_(binding), help_(help) {
  if (form == Form::kOption) value_name_ = ValueName(binding.kind);
  std::string_view rest = names;
  while (!rest.empty()) {
    const auto name = rest.substr(0, rest.find(','));
    rest.remove_prefix(std::min(name.size() + 1, rest.size()));
    if (name.substr(0, 2) == "--") {
      long_names_.emplace_back(name.substr(2));
    } else if (name.front() == '-') {
      short_names_.emplace_back(name.substr(1));
    } else {
      long_names_.emplace_back(name);
    }
  }
}

Argument& Argument::Required() {
  return AtLeast(1);
}

Argument& Argument::AtLeast(int words) {
  least_words_ = words;
  return *this;
}

Argument& Argument::Called(std::string value_name) {
  value_name_ = std::move(value_name);
  return *this;
}

Argument& Argument::OneOf(std::vector<std::string> values) {
  values_ = std::move(values);
  return *this;
}

Argument& Argument::Between(int low, int high) {
  range_ = {low, high};
  return *this;
}

Argument& Argument::Default(std::string text) {
  default_text_ = std::move(text);
  return *this;
}

Argument& Argument::TakesTheRest() {
  takes_the_rest_ = true;
  return *this;
}

Argument& Argument::Excludes(const Argument& other) {
  excluded_.push_back(&other);
  return *this;
}

std::string Argument::DisplayName() const {
  if (is_positional()) return long_names_.front();
  return long_names_.empty() ? "-" + short_names_.front() : "--" + long_names_.front();
}

void Argument::CheckAllowed(const std::string& word) const {
  if (!values_.empty() && std::find(values_.begin(), values_.end(), word) == values_.end()) {
    std::string list;
    for (const auto& value : values_) list += (list.empty() ? "" : ", ") + value;
    throw UsageError("\"" + word + "\" is not one of: " + list + "." + Suggestion(word, values_));
  }
  if (range_.second == 0) return;
  const int number = ParsedAs<int>::Parse(word);
  if (number < range_.first || number > range_.second) {
    throw UsageError(word + " is not between " + std::to_string(range_.first) + " and " +
                     std::to_string(range_.second) + ".");
  }
}

void Argument::Take(const std::string& word) const try {
  CheckAllowed(word);
  binding_.take(binding_.value, word);
} catch (const UsageError& error) {
  throw UsageError(DisplayName() + ": " + error.what());
}

Argument& Command::Add(Argument::Form form, const char* names, const Binding& binding,
                       const std::string& help) {
  arguments_.push_back(std::make_unique<Argument>(form, names, binding, help));
  return *arguments_.back();
}

Argument& Command::Flag(const char* names, bool& value, const std::string& help) {
  return Add(Argument::Form::kFlag, names, {&value}, help);
}

Argument& Command::UtcFlag(bool& utc) {
  return Flag("--utc", utc, "Show times in UTC instead of this computer's time zone");
}

Argument& Command::VersionFlag() {
  return Add(Argument::Form::kVersion, "--version", {}, "Print the version and exit");
}

Argument& Command::PackageArgument(Package& package) {
  return Positional("PACKAGE", package, "Full name of the application's package, for example com.example.app")
      .Required();
}

Command& Command::Subcommand(const CommandText& text) {
  subcommands_.push_back(std::make_unique<Command>(text));
  subcommands_.back()->parent_ = this;
  return *subcommands_.back();
}

Command& Command::Alias(const char* name) {
  aliases_.emplace_back(name);
  return *this;
}

Command& Command::Hide() {
  is_hidden_ = true;
  return *this;
}

std::vector<std::string> Command::Subcommands() const {
  std::vector<std::string> names;
  for (const auto& subcommand : subcommands_) {
    if (!subcommand->is_hidden()) names.push_back(subcommand->name());
  }
  return names;
}

std::vector<const Argument*> Command::Positionals() const {
  std::vector<const Argument*> positionals;
  for (const auto& argument : arguments_) {
    if (argument->is_positional()) positionals.push_back(argument.get());
  }
  return positionals;
}

std::vector<const Argument*> Command::Options() const {
  std::vector<const Argument*> options;
  for (const auto& argument : arguments_) {
    if (!argument->is_positional()) options.push_back(argument.get());
  }
  return options;
}

std::string Command::FullName() const {
  return parent_ == nullptr ? name_ : parent_->FullName() + " " + name_;
}

const Command* Command::Find(const std::string& word) const {
  for (const auto& subcommand : subcommands_) {
    if (subcommand->IsCalled(word)) return subcommand.get();
  }
  return nullptr;
}

bool Command::IsCalled(const std::string& word) const {
  return word == name_ || std::find(aliases_.begin(), aliases_.end(), word) != aliases_.end();
}

}  // namespace darokleim::cli
