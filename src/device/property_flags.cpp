// AdbCheckLockedState, AdbCheckEncryptState, AdbGetEncryptType, AdbCheckIsHarmony: properties as flags. No pointer is
// checked.
#include <initializer_list>
#include <string_view>

#include "darokleim.h"
#include "src/core/call_log.h"
#include "src/core/text.h"
#include "src/device/property.h"

using namespace darokleim::sdk;

namespace darokleim::sdk {
namespace {

template <typename Answer>
struct Meaning {
  std::string_view word;
  Answer answer;
};

// The last meaning whose word the property contains decides; without any, *answer is unchanged.
template <typename Answer>
int ReadAnswer(const char* function, const char* property_name,
               std::initializer_list<Meaning<Answer>> meanings, const char* serial, Answer* answer,
               const bool* cancel) {
  CallLog log(function);
  const Property property(serial, property_name, cancel);
  for (const auto& meaning : meanings) {
    if (Contains(property.c_value(), meaning.word)) *answer = meaning.answer;
  }
  return log.Leave(property.code());
}

}  // namespace
}  // namespace darokleim::sdk

int AdbCheckLockedState(const char* serial, bool* locked, const bool* cancel) {
  return ReadAnswer<bool>(__func__, "ro.boot.flash.locked", {{"1", true}, {"0", false}}, serial, locked,
                          cancel);
}

int AdbCheckEncryptState(const char* serial, bool* encrypted, const bool* cancel) {
  return ReadAnswer<bool>(__func__, "ro.crypto.state", {{"encrypted", true}, {"unencrypted", false}}, serial,
                          encrypted, cancel);
}

int AdbGetEncryptType(const char* serial, int* type, const bool* cancel) {
  return ReadAnswer<int>(__func__, "ro.crypto.type", {{"file", 0}, {"block", 1}}, serial, type, cancel);
}

// Unlike the others, writes its answer on failure too.
int AdbCheckIsHarmony(const char* serial, bool* is_harmony, const bool* cancel) {
  CallLog log(__func__);
  const Property ring_tone(serial, "ro.config.ringtone", cancel);
  *is_harmony = Contains(ring_tone.c_value(), "Harmony");
  return log.Leave(ring_tone.code());
}
