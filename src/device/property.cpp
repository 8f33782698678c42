// GetPropInfo, and the class that owns its text.
#include "src/device/property.h"

#include <string>

#include "darokleim.h"
#include "src/core/argument_text.h"
#include "src/core/classifier.h"
#include "src/platform/command_channel.h"

using namespace darokleim::sdk;

int GetPropInfo(const char* serial, const char* prop_name, char** out, int* out_len, const bool* cancel) {
  const std::string args = Cut(256, " -s %s shell getprop %s", serial, prop_name);
  const int status = ExecuteAdbCommandSynchronization(args.c_str(), cancel, out, out_len);
  // The text of a command that succeeded is the value, whatever it contains: a property can hold any text.
  if (status == 0 || !out || !*out) return status;
  return Classify(TextOf(*out, *out_len), status);
}

namespace darokleim::sdk {

Property::Property(const char* serial, const char* name, const bool* cancel)
    : code_(GetPropInfo(serial, name, buffer_.out(), buffer_.out_len(), cancel)) {}

bool Property::has_value() const {
  return code_ == ADB_RESULT_OK && buffer_.has_text();
}

std::string_view Property::value() const {
  return has_value() ? buffer_.text() : std::string_view();
}

std::string_view Property::c_value() const {
  return has_value() ? buffer_.c_text() : std::string_view();
}

}  // namespace darokleim::sdk
