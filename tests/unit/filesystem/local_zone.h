// Sets the process's time zone as long as the object lives.
#ifndef DAROKLEIM_TESTS_UNIT_FILESYSTEM_LOCAL_ZONE_H
#define DAROKLEIM_TESTS_UNIT_FILESYSTEM_LOCAL_ZONE_H

#include <stdlib.h>

#include <optional>
#include <string>

namespace darokleim::test {

class LocalZone {
 public:
  explicit LocalZone(const std::string& zone) {
    if (const char* before = getenv("TZ")) before_ = before;
    setenv("TZ", zone.c_str(), 1);
  }
  ~LocalZone() {
    if (before_) {
      setenv("TZ", before_->c_str(), 1);
    } else {
      unsetenv("TZ");
    }
  }
  LocalZone(const LocalZone&) = delete;
  LocalZone& operator=(const LocalZone&) = delete;

 private:
  std::optional<std::string> before_;
};

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_UNIT_FILESYSTEM_LOCAL_ZONE_H
