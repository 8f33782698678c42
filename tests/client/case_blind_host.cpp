#include "tests/client/case_blind_host.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <string>

namespace {

std::atomic<bool> is_blind = false;

template <typename Function>
Function* Real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

using OpenAt = int(int, const char*, int, ...);

// The name that a file is stored under, which may be spelled otherwise.
std::string StoredName(int folder, const std::string& name) {
  if (!is_blind || name.empty() || name == "." || name == ".." || name.find('/') != std::string::npos)
    return name;
  const int copy = Real<OpenAt>("openat")(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(fdopendir(copy), closedir);
  if (entries == nullptr) return name;
  std::string stored = name;
  while (const dirent* const entry = readdir(entries.get())) {
    if (entry->d_name == name) return name;
    if (strcasecmp(entry->d_name, name.c_str()) == 0) stored = entry->d_name;
  }
  return stored;
}

}  // namespace

extern "C" {
#pragma GCC visibility push(default)  // libraries call these in place of the C library's

int openat(int folder, const char* name, int flags, ...) {
  mode_t mode = 0;
  if ((flags & O_CREAT) != 0) {
    va_list more;
    va_start(more, flags);
    mode = va_arg(more, mode_t);
    va_end(more);
  }
  static OpenAt* const real = Real<OpenAt>("openat");
  return real(folder, StoredName(folder, name).c_str(), flags, mode);
}

int fstatat(int folder, const char* __restrict name, struct stat* __restrict status, int flags) noexcept {
  static auto* const real = Real<int(int, const char*, struct stat*, int)>("fstatat");
  return real(folder, StoredName(folder, name).c_str(), status, flags);
}

int mkdirat(int folder, const char* name, mode_t mode) noexcept {
  static auto* const real = Real<int(int, const char*, mode_t)>("mkdirat");
  return real(folder, StoredName(folder, name).c_str(), mode);
}

int renameat(int from_folder, const char* from, int to_folder, const char* to) noexcept {
  static auto* const real = Real<int(int, const char*, int, const char*)>("renameat");
  return real(from_folder, StoredName(from_folder, from).c_str(), to_folder,
              StoredName(to_folder, to).c_str());
}

int renameat2(int from_folder, const char* from, int to_folder, const char* to, unsigned flags) noexcept {
  static auto* const real = Real<int(int, const char*, int, const char*, unsigned)>("renameat2");
  return real(from_folder, StoredName(from_folder, from).c_str(), to_folder,
              StoredName(to_folder, to).c_str(), flags);
}

#pragma GCC visibility pop
}  // extern "C"

namespace darokleim::client_test {

CaseBlindHost::CaseBlindHost() {
  is_blind = true;
}
CaseBlindHost::~CaseBlindHost() {
  is_blind = false;
}

}  // namespace darokleim::client_test
