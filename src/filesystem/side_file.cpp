#include "src/filesystem/side_file.h"

#include <cstdio>
#include <memory>
#include <string>

namespace {

struct Close {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

}  // namespace

void SaveBuf(const char* name, const char* buf, int len) {
  const std::string path = std::string("F:\\") + name;
  // "e": an adb server that another thread starts meanwhile must not inherit the file.
  const std::unique_ptr<std::FILE, Close> file(std::fopen(path.c_str(), "wbe"));
  if (!file || len <= 0) return;
  std::fwrite(buf, 1, static_cast<std::size_t>(len), file.get());
}
