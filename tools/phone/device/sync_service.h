#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_SYNC_SERVICE_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_SYNC_SERVICE_H

#include <cstdint>
#include <string>
#include <vector>

#include "base/unique_fd.h"

namespace darokleim::phone {

// Moves files between the client and the phone: push, pull, adb ls and the stat before each. Holds one block of
// a file in memory, whatever the file's size.
class SyncService {
 public:
  explicit SyncService(base::UniqueFd client);

  // Serves requests until the client ends.
  void Run();

 private:
  bool Answer(uint32_t id, const std::string& path);
  bool Stat(uint32_t id, const std::string& path);
  bool List(bool second_form, const std::string& path);
  bool Send(const std::string& path);
  bool TakeFile(const std::string& path, unsigned mode);
  bool TakeLink(const std::string& path);
  bool TakeData(int file);
  bool Receive(const std::string& path);
  bool Refuse(const std::string& reason);
  bool RefuseWithErrno(const std::string& reason);
  bool RefuseRestOfFile(const std::string& reason);
  bool Reply(const std::string& message) const;

  base::UniqueFd client_;
  std::vector<char> block_;
};

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_SYNC_SERVICE_H
