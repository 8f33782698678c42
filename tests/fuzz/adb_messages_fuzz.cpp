// Any bytes as the answers to requests: status words, texts, lists of devices, features, the server's address.
#include <string>
#include <string_view>

#include "adb/address.h"
#include "adb/device_list.h"
#include "adb/features.h"
#include "adb/message.h"
#include "tests/fuzz/adb_reader.h"

using namespace darokleim::adb;
using namespace darokleim::adb_fuzz;
using darokleim::sdk::Require;

namespace {

// Statuses and texts until the first error.
void ReadAnswers(const std::string& bytes) {
  ServerOfBytes server(bytes);
  Connection connection = server.Take();
  size_t left = bytes.size();
  for (;;) {
    if (Status status = ReadStatus(&connection, "fuzz", Soon()); !status.ok()) {
      return RequireAnErrorOfTheInput(status.error());
    }
    Result<std::string> text = ReadText(&connection, "fuzz", Soon());
    if (!text.ok()) return RequireAnErrorOfTheInput(text.error());
    Require(text->size() + 8 <= left);
    left -= text->size() + 8;
  }
}

// Each way of reading texts gives the same ones.
void ReadTexts(const std::string& bytes) {
  ServerOfBytes server(bytes);
  ServerOfBytes same(bytes);
  Connection connection = server.Take();
  Connection other = same.Take();
  for (;;) {
    Result<std::string> text = ReadText(&connection, "fuzz", Soon());
    Result<std::string> taken = TakeText(&other, "fuzz", Soon());
    Require(text.ok() == taken.ok());
    if (!text.ok()) return RequireAnErrorOfTheInput(text.error());
    Require(*text == *taken);
  }
}

void ParseTexts(const std::string& text) {
  for (const AttachedDevice& device : ParseDeviceList(text)) {
    Require(!device.serial.empty() && !device.state.empty());
    Require(text.find(device.serial) != std::string::npos && text.find(device.state) != std::string::npos);
  }
  const FeatureSet features(text);
  Require(!features.Has("") && features.names() == text);
  const Result<ServerAddress> address = ServerAddress::Parse(text);
  if (address.ok()) {
    Require(address->kind == ServerAddress::Kind::kTcp ? address->port > 0 : !address->name.empty());
  } else {
    Require(address.error().code == ErrorCode::kInvalidAddress && !address.error().message.empty());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string bytes = darokleim::sdk::Text(data, std::min(size, kLongestInput));
  ReadAnswers(bytes);
  ReadTexts(bytes);
  ParseTexts(bytes);
  return 0;
}
