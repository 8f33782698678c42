#include "tests/unit/support/sdk_test.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <iterator>

#include "src/platform/command_channel.h"
#include "src/platform/log_library.h"

namespace darokleim::test {
namespace {

SdkTest* current = nullptr;

}  // namespace

SdkTest::SdkTest() {
  current = this;
}

SdkTest::~SdkTest() {
  channel.CheckNothingIsLeft();
  current = nullptr;
}

SdkTest& SdkTest::Current() {
  return *current;
}

Journal SdkTest::journal() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return journal_;
}

Journal SdkTest::log_lines() const {
  Journal lines;
  for (const Event& event : journal()) {
    if (event.kind == Event::Kind::kLogged) lines.push_back(event);
  }
  return lines;
}

void SdkTest::Note(Event event) {
  const std::lock_guard<std::mutex> lock(mutex_);
  journal_.push_back(std::move(event));
}

}  // namespace darokleim::test

using darokleim::test::Event;
using darokleim::test::SdkTest;

bool InitLogEx(const void* log_context, const char* module, const char* log_file_path) {
  EXPECT_STREQ(module, "AdbSDK");
  SdkTest::Current().log_context = log_context;
  SdkTest::Current().Note(darokleim::test::OpenedLog(log_file_path));
  return SdkTest::Current().log_opens;
}

void LogEx(const char* module, int level, const char* format, ...) {
  EXPECT_STREQ(module, "AdbSDK");
  std::va_list arguments;
  va_start(arguments, format);
  std::va_list again;
  va_copy(again, arguments);
  std::string text(static_cast<std::size_t>(std::vsnprintf(nullptr, 0, format, arguments)), '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, again);
  va_end(again);
  va_end(arguments);
  SdkTest::Current().Note({Event::Kind::kLogged, level, std::move(text)});
}

int InitAdbCommuncation2Server(const char* adb_path, const char* log_dir, const void* log_context) {
  SdkTest::Current().channel_context = log_context;
  SdkTest::Current().Note(darokleim::test::InitChannel(adb_path, log_dir));
  return 77;  // the SDK must not care
}

int ExecuteAdbCommandSynchronization(const char* args, const bool* cancel, char** out, int* out_len) {
  SdkTest& test = SdkTest::Current();
  test.Note(darokleim::test::Ran(args));
  return test.channel.Run(args, cancel, &test.cancel, out, out_len);
}

int ExecuteAdbCommandAnsynchronization(const char* args, const bool* cancel, void* context, void* on_output) {
  SdkTest::Current().Note(darokleim::test::Started(args));
  return SdkTest::Current().channel.Start({args, cancel, context, on_output});
}

void ReleaseAdbOutBuffer(char* out) {
  SdkTest::Current().Note(darokleim::test::GaveBack());
  SdkTest::Current().channel.TakeBack(out);
}
