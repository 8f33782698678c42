// What a word on the command line is: how it is checked, what completion offers for it and what help calls it follow
// from the type of the value that it is for.
#ifndef DAROKLEIM_TOOLS_CLI_COMMAND_LINE_ARGUMENT_TYPES_H
#define DAROKLEIM_TOOLS_CLI_COMMAND_LINE_ARGUMENT_TYPES_H

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace darokleim::cli {

enum class ValueKind {
  kText,
  kNumber,
  kHostPath,
  kHostDirectory,
  kDevicePath,
  kPackage,
  kSerial,
  kPort,
};

// What help calls a value of an option of this kind.
const char* ValueName(ValueKind kind);

// A type for the command line has a kKind and a Parse, which throws UsageError for a word that is not valid.

struct HostPath {
  static constexpr ValueKind kKind = ValueKind::kHostPath;
  static HostPath Parse(const std::string& word) { return {word}; }
  std::string text;
};

struct HostDirectory {
  static constexpr ValueKind kKind = ValueKind::kHostDirectory;
  static HostDirectory Parse(const std::string& word) { return {word}; }
  std::string text;
};

// The full name of an application's package.
struct Package {
  static constexpr ValueKind kKind = ValueKind::kPackage;
  static Package Parse(const std::string& word);
  std::string name;
};

// A serial number as adb lists it; an empty one chooses no device.
struct Serial {
  static constexpr ValueKind kKind = ValueKind::kSerial;
  static Serial Parse(const std::string& word);
  std::string text;
};

// A duration; decimals are allowed: "0.5".
struct Seconds {
  static constexpr ValueKind kKind = ValueKind::kNumber;
  static Seconds Parse(const std::string& word);
  std::chrono::milliseconds value{0};
};

// A TCP port, 1 to 65535, in digits.
struct Port {
  static constexpr ValueKind kKind = ValueKind::kPort;
  static Port Parse(const std::string& word);
  std::string text;
};

// The words go into commands of the device as they are, so each of these is checked for what it may hold.
bool IsPackageName(std::string_view word);
bool IsSerial(std::string_view word);

// Throws UsageError unless the word consists of ASCII letters, digits and the characters in `others`, is not empty and
// does not begin with a hyphen. `what` completes "is not a valid …".
void CheckWord(std::string_view word, std::string_view others, const char* what);

// Writes the words of one argument into the variable that it is for.
struct Binding {
  void* value = nullptr;
  void (*take)(void* value, const std::string& word) = nullptr;
  ValueKind kind = ValueKind::kText;
  bool takes_several = false;
};

template <typename T>
struct ParsedAs {
  static constexpr ValueKind kKind = T::kKind;
  static T Parse(const std::string& word) { return T::Parse(word); }
};

template <>
struct ParsedAs<std::string> {
  static constexpr ValueKind kKind = ValueKind::kText;
  static const std::string& Parse(const std::string& word) { return word; }
};

template <>
struct ParsedAs<int> {
  static constexpr ValueKind kKind = ValueKind::kNumber;
  static int Parse(const std::string& word);
};

template <typename T>
Binding BindingTo(T& value) {
  const auto take = [](void* to, const std::string& word) {
    *static_cast<T*>(to) = ParsedAs<T>::Parse(word);
  };
  return {&value, take, ParsedAs<T>::kKind, false};
}

template <typename T>
Binding BindingTo(std::vector<T>& values) {
  const auto take = [](void* to, const std::string& word) {
    static_cast<std::vector<T>*>(to)->push_back(ParsedAs<T>::Parse(word));
  };
  return {&values, take, ParsedAs<T>::kKind, true};
}

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMAND_LINE_ARGUMENT_TYPES_H
