// AdbGetPhoneManufacturer, AdbGetPhoneSoftVersion, AdbGetPhoneProductModel, AdbGetMiuiBuildRegin: properties
// as text.
#include "core/call_log.h"
#include "core/caller_buffer.h"
#include "darokleim.h"
#include "device/property.h"

namespace darokleim {
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
}  // namespace darokleim

int AdbGetPhoneManufacturer(const char* serial, char* buffer, int buffer_size, const bool* cancel) {
  return darokleim::ReadText("AdbGetPhoneManufacturer", "ro.product.manufacturer", serial, buffer,
                             buffer_size, cancel);
}

int AdbGetPhoneSoftVersion(const char* serial, char* buffer, int buffer_size, const bool* cancel) {
  return darokleim::ReadText("AdbGetPhoneSoftVersion", "ro.build.version.release", serial, buffer,
                             buffer_size, cancel);
}

int AdbGetPhoneProductModel(const char* serial, char* buffer, int buffer_size, const bool* cancel) {
  return darokleim::ReadText("AdbGetPhoneProductModel", "ro.product.model", serial, buffer, buffer_size,
                             cancel);
}

int AdbGetMiuiBuildRegin(const char* serial, char* buffer, int buffer_size, const bool* cancel) {
  return darokleim::ReadText("AdbGetMiuiBuildRegin", "ro.miui.build.region", serial, buffer, buffer_size,
                             cancel);
}
