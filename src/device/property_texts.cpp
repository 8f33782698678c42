// AdbGetPhoneManufacturer, AdbGetPhoneSoftVersion, AdbGetPhoneProductModel, AdbGetMiuiBuildRegin: properties
// as text.
#include "darokleim.h"
#include "src/core/call_log.h"
#include "src/core/caller_output.h"
#include "src/device/property.h"

using namespace darokleim::sdk;

namespace darokleim::sdk {
namespace {

int ReadText(const char* function, const char* property_name, const char* serial, char* buffer,
             int buffer_size, const bool* cancel) {
  CallLog log(function);
  if (AnyNull(serial, buffer)) return log.InvalidParam();
  const Property property(serial, property_name, cancel);
  if (!property.has_value()) return log.Leave(property.code());
  return log.Leave(FillCallerBuffer(property.value(), buffer, buffer_size));
}

}  // namespace
}  // namespace darokleim::sdk

int AdbGetPhoneManufacturer(const char* serial, char* buffer, int buffer_size, const bool* cancel) {
  return ReadText(__func__, "ro.product.manufacturer", serial, buffer, buffer_size, cancel);
}

int AdbGetPhoneSoftVersion(const char* serial, char* buffer, int buffer_size, const bool* cancel) {
  return ReadText(__func__, "ro.build.version.release", serial, buffer, buffer_size, cancel);
}

int AdbGetPhoneProductModel(const char* serial, char* buffer, int buffer_size, const bool* cancel) {
  return ReadText(__func__, "ro.product.model", serial, buffer, buffer_size, cancel);
}

int AdbGetMiuiBuildRegin(const char* serial, char* buffer, int buffer_size, const bool* cancel) {
  return ReadText(__func__, "ro.miui.build.region", serial, buffer, buffer_size, cancel);
}
