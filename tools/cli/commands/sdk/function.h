// The functions of darokleim.h as data, so that any of them can be called with words of a command line.
#ifndef DAROKLEIM_TOOLS_CLI_COMMANDS_SDK_FUNCTION_H
#define DAROKLEIM_TOOLS_CLI_COMMANDS_SDK_FUNCTION_H

#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace darokleim::cli {

// What a parameter is for.
enum class ParameterKind {
  // From the command line.
  kSerial,         // of the chosen device
  kText,           // const char* or std::string
  kOptionalText,   // null, or empty, when the word is left out
  kHostPath,       // of this computer
  kHostDirectory,  // of this computer
  kDevicePath,
  kPackage,
  kSwitch,      // bool or int, 0 or 1
  kEditedText,  // std::string&: a text that the function changes
  kBufferSize,
  // What the tool brings along.
  kLogContext,
  kCancel,
  kOnOutputContext,
  // Outputs.
  kOnOutput,      // address of a function that gets them
  kBuffer,        // char* of the caller's
  kBlock,         // char** to a block of the library
  kChannelBlock,  // char** to a block of the command channel
  kFreedBlock,    // char** to a block that the function frees
  kLength,        // int*, of the block before it
  kAnswer,        // bool*
  kNumber,        // int*
  kLongNumber,    // long long*
  kLargeNumber,   // unsigned long long*
};

struct Parameter {
  ParameterKind kind;
  const char* name;  // as in darokleim.h
  std::string help;  // of what comes from the command line
};

bool IsWord(ParameterKind kind);      // of the command line
bool IsRequired(ParameterKind kind);  // such a word that must be there
bool IsOutput(ParameterKind kind);    // has something to show after the call

// Room for one argument of a call, whatever its type is.
struct Value {
  std::string text;
  bool is_null = false;  // the text is passed as a null pointer
  std::vector<char> buffer;
  char* block = nullptr;
  bool answer = false;
  int number = 0;
  long long long_number = 0;
  unsigned long long large_number = 0;
  const bool* flag = nullptr;
  void* pointer = nullptr;
};

// The result code, what a function of type bool returned, or nothing.
using Returned = std::variant<std::monostate, int, bool>;

struct SdkFunction {
  const char* name;
  const char* summary;  // a line without a full stop
  const char* example;  // the words after the function's name
  std::vector<Parameter> parameters;
  Returned (*call)(std::vector<Value>& values);
  std::string notes;                                              // for --help; empty without any
  bool needs_library = true;                                      // AdbSdkInit must be called before
  int other_success = 0;                                          // besides 0
  bool (*kills_adb)(const std::vector<Value>& values) = nullptr;  // whether the call kills every adb process
};

// All of them, in the order of darokleim.h.
const std::vector<SdkFunction>& SdkFunctions();

// The bytes that a buffer has where the function ignores the size that it is given.
constexpr int kUncheckedBufferSize = 4096;

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_COMMANDS_SDK_FUNCTION_H
