#include "src/platform/log_library.h"

#include <pthread.h>
#if defined(__APPLE__)
#include <dlfcn.h>
#endif

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <system_error>

#include "log/line_text.h"
#include "log/log_file.h"

#define DAROKLEIM_EXPORT __attribute__((visibility("default")))

namespace darokleim::log {
namespace {

constexpr int kDefaultLowestLevel = static_cast<int>(LogLevel::kProgress);

struct Module {
  std::string name;  // as written in each line
  LogFile* file;
  int lowest_level;
};

struct Log {
  std::mutex mutex;
  std::map<std::string, Module, std::less<>> modules;
  std::map<std::string, std::unique_ptr<LogFile>> files;  // by path: two modules may share one
};

// Never destroyed: destructors of the host's own statics may still log.
Log& TheLog() {
  static Log& log = *new Log;
  return log;
}

// A child forked while another thread writes would otherwise find the mutex locked for ever.
void KeepUsableAcrossFork() {
  pthread_atfork([] { TheLog().mutex.lock(); }, [] { TheLog().mutex.unlock(); },
                 [] { TheLog().mutex.unlock(); });
#if defined(__APPLE__)
  // The handlers would outlive an unloaded library. On other systems the linker marks it as never unloaded.
  Dl_info self;
  if (dladdr(reinterpret_cast<const void*>(&LogEx), &self) != 0) {
    dlopen(self.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
  }
#endif
}

int LowestLevelFromEnvironment() {
  const char* text = std::getenv("DAROKLEIM_LOG_LEVEL");
  if (text == nullptr) return kDefaultLowestLevel;
  const char* end = text + std::strlen(text);
  int level = 0;
  const auto parsed = std::from_chars(text, end, level);
  return parsed.ec == std::errc() && parsed.ptr == end ? level : kDefaultLowestLevel;
}

bool OpenModule(const char* name, const char* path) {
  static const bool registered = (KeepUsableAcrossFork(), true);
  static_cast<void>(registered);
  // Rotation reopens the file, perhaps after the host has changed its directory.
  const std::string absolute_path = std::filesystem::absolute(path).native();

  Log& log = TheLog();
  const std::lock_guard lock(log.mutex);
  if (log.modules.find(std::string_view(name)) != log.modules.end()) return true;
  auto file = log.files.find(absolute_path);
  if (file == log.files.end()) {
    auto opened = LogFile::Open(absolute_path);
    if (opened == nullptr) return false;
    file = log.files.emplace(absolute_path, std::move(opened)).first;
  }
  log.modules.emplace(name, Module{OnOneLine(name), file->second.get(), LowestLevelFromEnvironment()});
  return true;
}

// Null when there is nothing to write. The pointer remains valid: a module is never closed.
const Module* FindModule(std::string_view name, int level) {
  Log& log = TheLog();
  const std::lock_guard lock(log.mutex);
  const auto found = log.modules.find(name);
  return found != log.modules.end() && level >= found->second.lowest_level ? &found->second : nullptr;
}

void WriteLine(const Module& module, int level, std::string_view line) {
  const std::lock_guard lock(TheLog().mutex);
  module.file->Write(module.name, static_cast<LogLevel>(level), line);
}

}  // namespace
}  // namespace darokleim::log

DAROKLEIM_EXPORT bool InitLogEx(const void* /*log_context*/, const char* module,
                                const char* log_file_path) try {
  const int caller_errno = errno;
  if (module == nullptr || log_file_path == nullptr || *log_file_path == '\0') return false;
  const bool opened = darokleim::log::OpenModule(module, log_file_path);
  errno = caller_errno;
  return opened;
} catch (...) {
  return false;
}

DAROKLEIM_EXPORT void LogEx(const char* module, int level, const char* format, ...) try {
  const int caller_errno = errno;
  if (module == nullptr || format == nullptr) return;
  const int known_level = std::clamp(level, static_cast<int>(darokleim::log::LogLevel::kTrace),
                                     static_cast<int>(darokleim::log::LogLevel::kError));
  const darokleim::log::Module* found = darokleim::log::FindModule(module, known_level);
  if (found == nullptr) return;

  va_list arguments;
  va_start(arguments, format);
  const std::string text = darokleim::log::FormatText(format, arguments);
  va_end(arguments);
  darokleim::log::WriteLine(*found, known_level, darokleim::log::OnOneLine(text));
  errno = caller_errno;
} catch (...) {
  // A log that runs out of memory must not end its host.
}
