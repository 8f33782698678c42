#ifndef DAROKLEIM_TOOLS_PHONE_SERVER_PHONE_FOLDER_H
#define DAROKLEIM_TOOLS_PHONE_SERVER_PHONE_FOLDER_H

#include <string>

#include "server/phone_options.h"

namespace darokleim::phone {

// The host folder of one phone: its file system and, beside it, what the phone keeps that no file of a real
// phone shows. A temporary one goes with this object.
class PhoneFolder {
 public:
  // Throws std::runtime_error when the folder cannot be made.
  explicit PhoneFolder(const PhoneOptions& options);
  ~PhoneFolder();
  PhoneFolder(const PhoneFolder&) = delete;
  PhoneFolder& operator=(const PhoneFolder&) = delete;

  // The phone's "/".
  std::string files() const { return path_ + "/files"; }
  std::string state() const { return path_ + "/state"; }

 private:
  std::string path_;
  bool temporary_;
};

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_SERVER_PHONE_FOLDER_H
