// What the phone's package manager prints, as the client reads it.
#include <cctype>

#include "client/apps/package_dump.h"
#include "tests/fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace darokleim::client;
  using darokleim::sdk::Require;
  const std::string text = darokleim::sdk::Text(data, size);
  for (const auto& [name, path] : ReadPackageList(text)) {
    Require(IsPackageName(name));
    Require(text.find(path + "=" + name) != std::string::npos);
  }
  for (const auto& [name, facts] : ReadPackageDump(text)) {
    Require(IsPackageName(name));
    Require(text.find(facts.version_name) != std::string::npos);
  }
  const PackageAnswer answer = ReadPackageAnswer(text);
  Require(!answer.success || answer.reason.empty());
  Require(text.find(answer.reason) != std::string::npos);
  const auto session = ReadSession(text);  // becomes part of a command
  if (session) {
    Require(!session->empty());
    for (const char c : *session) Require(std::isdigit(static_cast<unsigned char>(c)) != 0);
  }
  return 0;
}
