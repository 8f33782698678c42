// The only file that knows CLI11: its headers cost seconds of compile time.
#include "tools/cli/command_line/parse.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <utility>
#include <vector>

#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

using Options = std::vector<std::pair<const Argument*, CLI::Option*>>;

// Positional arguments are shown as the model has them: CLI11 does not know of those after one that takes any number.
class HelpFormatter : public CLI::Formatter {
 public:
  explicit HelpFormatter(const Options& options) : options_(options) {}

  std::string make_option_usage(const CLI::Option* option) const override {
    for (const auto& [argument, candidate] : options_) {
      if (candidate == option) return Usage(*argument);
    }
    return Formatter::make_option_usage(option);
  }

  std::string make_option_opts(const CLI::Option* option) const override {
    if (!option->get_positional()) return Formatter::make_option_opts(option);
    return option->get_expected_max() > 1 ? " ..." : "";
  }

 private:
  static std::string Usage(const Argument& argument) {
    const std::string name = argument.DisplayName() + (argument.takes_several_words() ? "..." : "");
    return argument.is_required() ? name : "[" + name + "]";
  }

  const Options& options_;
};

class Parser {
 public:
  Parser(const Command& root, const std::string& version)
      : version_(version), app_(root.description(), root.name()) {
    app_.formatter(std::make_shared<HelpFormatter>(options_));
    app_.fallthrough();  // to the options of the commands around it
    Add(root, app_);
  }

  ParsedLine Parse(int argc, const char* const* argv) try {
    app_.parse(argc, argv);
    const Command& command = Chosen();
    for (const Command* bound = &command; bound != nullptr; bound = bound->parent()) Bind(*bound);
    return {"", &command};
  } catch (const CLI::CallForHelp&) {
    return {app_.help(), nullptr};
  } catch (const CLI::CallForVersion& version) {
    return {std::string(version.what()) + "\n", nullptr};
  } catch (const CLI::ParseError& error) {
    throw UsageError(error.what());
  }

 private:
  void Add(const Command& command, CLI::App& app) {
    apps_.emplace_back(&command, &app);
    app.footer(command.footer());
    for (const auto& name : command.aliases()) app.alias(name);
    if (command.is_hidden()) app.group("");
    for (const auto& argument : command.arguments()) Add(*argument, app);
    JoinPositionals(command.Positionals());
    for (const auto& argument : command.arguments()) Relate(*argument);
    // None is reported by Chosen, after what is not known.
    if (!command.subcommands().empty()) app.require_subcommand(0, 1);
    for (const auto& subcommand : command.subcommands()) {
      Add(*subcommand, *app.add_subcommand(subcommand->name(), subcommand->description()));
    }
  }

  static std::string Names(const Argument& argument) {
    if (argument.is_positional()) return argument.long_names().front();
    std::string names;
    for (const auto& name : argument.short_names()) names += (names.empty() ? "-" : ",-") + name;
    for (const auto& name : argument.long_names()) names += (names.empty() ? "--" : ",--") + name;
    return names;
  }

  // The values are bound at the end, when the whole line is known to be right.
  void Add(const Argument& argument, CLI::App& app) {
    if (argument.is_version()) {
      app.set_version_flag(Names(argument), version_, argument.help());
      return;
    }
    if (!argument.takes_value()) {
      options_.emplace_back(&argument, app.add_flag(Names(argument), argument.help()));
      return;
    }
    const auto accept = [](const CLI::results_t&) { return true; };
    auto* option = app.add_option(Names(argument), accept, argument.help());
    option->type_name(argument.value_name());
    option->type_size(1);
    const int most = argument.is_repeatable() ? CLI::detail::expected_max_vector_size : 1;
    option->expected(std::max(1, argument.least_words()), most);
    option->allow_extra_args(argument.takes_several_words());
    option->required(argument.is_required());
    if (!argument.default_text().empty()) option->default_str(argument.default_text());
    options_.emplace_back(&argument, option);
  }

  // CLI11 gives every word to the first positional argument that takes any number.
  void JoinPositionals(const std::vector<const Argument*>& positionals) const {
    const auto takes_several = [](const Argument* positional) { return positional->takes_several_words(); };
    const auto several = std::find_if(positionals.begin(), positionals.end(), takes_several);
    if (several == positionals.end()) return;
    int least = (*several)->least_words();
    for (auto later = several + 1; later != positionals.end(); ++later) {
      least += (*later)->least_words();
      Find(**later)->required(false);
    }
    Find(**several)->expected(std::max(1, least), CLI::detail::expected_max_vector_size);
  }

  void Relate(const Argument& argument) {
    for (const auto* other : argument.excluded()) Find(argument)->excludes(Find(*other));
    for (const auto* other : argument.needed()) Find(argument)->needs(Find(*other));
  }

  CLI::Option* Find(const Argument& argument) const {
    for (const auto& [candidate, option] : options_) {
      if (candidate == &argument) return option;
    }
    throw std::logic_error("an option excludes or needs one of another command");
  }

  const Command& Chosen() const {
    const CLI::App* app = &app_;
    while (!app->get_subcommands().empty()) app = app->get_subcommands().front();
    for (const auto& [command, candidate] : apps_) {
      if (candidate != app) continue;
      if (!command->has_action()) throw UsageError("A command is required");
      return *command;
    }
    throw std::logic_error("a command that nobody added");
  }

  void Bind(const Command& command) const {
    for (const auto* option : command.Options()) {
      if (option->is_version()) continue;
      if (!option->takes_value() && Find(*option)->count() > 0) option->SetFlag();
      for (const auto& word : option->takes_value() ? Find(*option)->results() : CLI::results_t())
        option->Take(word);
    }
    BindPositionals(command.Positionals());
  }

  // One that takes any number of words leaves one to each of those after it, as long as it keeps as many as it needs.
  void BindPositionals(const std::vector<const Argument*>& positionals) const {
    std::vector<std::string> words;
    for (const auto* positional : positionals) {
      const auto& results = Find(*positional)->results();
      words.insert(words.end(), results.begin(), results.end());
    }
    std::size_t next = 0;
    for (std::size_t i = 0; i < positionals.size(); ++i) {
      const auto later = positionals.size() - i - 1;
      const auto left = words.size() - next;
      std::size_t count = std::min<std::size_t>(left, 1);
      if (positionals[i]->takes_several_words()) {
        count = std::max(left - std::min(left, later), std::min(left, LeastWords(*positionals[i])));
      }
      for (; count > 0; --count) positionals[i]->Take(words[next++]);
    }
  }

  static std::size_t LeastWords(const Argument& argument) {
    return static_cast<std::size_t>(argument.least_words());
  }

  std::string version_;
  CLI::App app_;
  std::vector<std::pair<const Command*, const CLI::App*>> apps_;
  Options options_;
};

}  // namespace

ParsedLine ParseCommandLine(const Command& root, const std::string& version, int argc,
                            const char* const* argv) {
  return Parser(root, version).Parse(argc, argv);
}

}  // namespace darokleim::cli
