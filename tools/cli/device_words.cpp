#include "tools/cli/device_words.h"

#include <algorithm>

#include "base/ascii.h"
#include "tools/cli/errors.h"

namespace darokleim::cli {
namespace {

constexpr int kLastPort = 65535;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

bool IsPort(const std::string& text) {
  const bool is_number = !text.empty() && text.size() <= 5 && std::all_of(text.begin(), text.end(), IsDigit);
  return is_number && std::stoi(text) >= 1 && std::stoi(text) <= kLastPort;
}

}  // namespace

CLI::Validator WordOf(const std::string& others, const std::string& what) {
  const auto check = [others, what](const std::string& word) -> std::string {
    const auto allowed = [&others](char c) {
      return base::IsAsciiLetterOrDigit(c) || others.find(c) != std::string::npos;
    };
    const bool fits = !word.empty() && word.front() != '-' && std::all_of(word.begin(), word.end(), allowed);
    return fits ? "" : "\"" + word + "\" is no " + what;
  };
  return CLI::Validator(check, "");
}

void AddPackageArgument(CLI::App& command, std::string& package) {
  command.add_option("PACKAGE", package, "Full name of the application's package, as com.example.app")
      ->required()
      ->check(WordOf("._-", "name of a package"));
}

void AddPortArgument(CLI::App& command, const std::string& name, std::string& port,
                     const std::string& description) {
  const auto check = [](const std::string& text) -> std::string {
    return IsPort(text) ? "" : "\"" + text + "\" is no TCP port: 1 to 65535";
  };
  command.add_option(name, port, description)->required()->check(CLI::Validator(check, ""));
}

void CheckLength(const std::string& command, std::size_t limit, const std::string& what) {
  if (command.size() <= limit) return;
  throw ToolError(what + " is too long: " + std::to_string(command.size() - limit) +
                  " bytes more than fit into the command.");
}

}  // namespace darokleim::cli
