#ifndef DAROKLEIM_TOOLS_PHONE_COMMON_KEY_VALUES_H
#define DAROKLEIM_TOOLS_PHONE_COMMON_KEY_VALUES_H

#include <map>
#include <string>

namespace darokleim::phone {

using KeyValues = std::map<std::string, std::string>;

// Lines of the form key=value, as in a phone's build.prop. A missing file has none; a line break in a
// value becomes a space.
KeyValues ReadKeyValues(const std::string& path);
bool WriteKeyValues(const std::string& path, const KeyValues& values);

// The value, or an empty text.
std::string ValueOf(const KeyValues& values, const std::string& key);

// Holds a lock file for as long as it lives: two programs that change the same state wait for each other.
class StateLock {
 public:
  explicit StateLock(const std::string& folder);
  ~StateLock();
  StateLock(const StateLock&) = delete;
  StateLock& operator=(const StateLock&) = delete;

 private:
  int fd_;
};

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_COMMON_KEY_VALUES_H
