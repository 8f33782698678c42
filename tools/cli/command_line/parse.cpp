// The only file that knows CLI11: its headers cost seconds of compile time.
#include "tools/cli/command_line/parse.h"

#include <CLI/CLI.hpp>
#include <utility>
#include <vector>

#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

// Leaves out of a positional argument's line what the usage line says already.
class HelpFormatter : public CLI::Formatter {
 public:
  std::string make_option_opts(const CLI::Option* option) const override {
    if (!option->get_positional()) return Formatter::make_option_opts(option);
    return option->get_expected_max() > 1 ? " ..." : "";
  }
};

class Parser {
 public:
  Parser(const Command& root, const std::string& version)
      : version_(version), app_(root.description(), root.name()) {
    app_.formatter(std::make_shared<HelpFormatter>());
    app_.fallthrough();  // to the options of the commands around it
    Add(root, app_);
  }

  ParsedLine Parse(int argc, const char* const* argv) try {
    app_.parse(argc, argv);
    const Command& command = Chosen();
    for (const auto& [argument, option] : options_) Bind(*argument, *option);
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
    if (argument.takes_several_words()) {
      option->expected(std::max(1, argument.least_words()), CLI::detail::expected_max_vector_size);
    } else if (argument.is_repeatable()) {
      option->expected(1, CLI::detail::expected_max_vector_size)->allow_extra_args(false);
    } else {
      option->expected(1);
    }
    option->required(argument.is_required());
    if (!argument.default_text().empty()) option->default_str(argument.default_text());
    options_.emplace_back(&argument, option);
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
      if (!command->subcommands().empty()) throw UsageError("A command is required");
      return *command;
    }
    throw std::logic_error("a command that nobody added");
  }

  static void Bind(const Argument& argument, const CLI::Option& option) {
    if (!argument.takes_value()) {
      if (option.count() > 0) argument.SetFlag();
      return;
    }
    for (const auto& word : option.results()) argument.Take(word);
  }

  std::string version_;
  CLI::App app_;
  std::vector<std::pair<const Command*, const CLI::App*>> apps_;
  std::vector<std::pair<const Argument*, CLI::Option*>> options_;
};

}  // namespace

ParsedLine ParseCommandLine(const Command& root, const std::string& version, int argc,
                            const char* const* argv) {
  return Parser(root, version).Parse(argc, argv);
}

}  // namespace darokleim::cli
