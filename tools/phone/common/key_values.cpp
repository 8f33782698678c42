#include "tools/phone/common/key_values.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>

#include "tools/phone/common/io.h"
#include "tools/phone/common/wire.h"

namespace darokleim::phone {

KeyValues ReadKeyValues(const std::string& path) {
  KeyValues values;
  for (const std::string& line : Split(ReadFile(path).value_or(""), '\n')) {
    const size_t equals = line.find('=');
    if (equals != std::string::npos && line[0] != '#')
      values[line.substr(0, equals)] = line.substr(equals + 1);
  }
  return values;
}

bool WriteKeyValues(const std::string& path, const KeyValues& values) {
  std::string content;
  for (const auto& [key, value] : values) {
    const size_t line = content.size();
    content.append(key).append("=").append(value);
    std::replace(content.begin() + static_cast<std::ptrdiff_t>(line), content.end(), '\n', ' ');
    content += '\n';
  }
  return WriteFile(path, content);
}

std::string ValueOf(const KeyValues& values, const std::string& key) {
  const auto found = values.find(key);
  return found == values.end() ? "" : found->second;
}

StateLock::StateLock(const std::string& folder)
    : fd_(open((folder + "/lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644)) {
  if (fd_ >= 0) flock(fd_, LOCK_EX);
}

StateLock::~StateLock() {
  if (fd_ >= 0) close(fd_);
}

}  // namespace darokleim::phone
