// What phones print about themselves, as the client reads it.
#include "client/facts.h"
#include "client/volumes.h"
#include "tests/fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace darokleim::client;
  using darokleim::sdk::Require;
  const std::string text = darokleim::sdk::Text(data, size);
  std::size_t bytes = 0;
  ForEachProperty(text, [&](const std::string& name, const std::string& value) {
    bytes += name.size() + value.size();
    return true;
  });
  Require(bytes <= text.size());
  ReadBattery(text);
  ReadScreen(text);
  ReadMemory(text);
  ReadRoundedSize(text);
  for (const Volume& volume : ReadVolumes(text)) Require(text.find(volume.path) != std::string::npos);
  return 0;
}
