#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_SYNC_SERVICE_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_SYNC_SERVICE_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/unique_fd.h"

namespace darokleim::phone {

// Moves files between the client and the phone: push, pull, adb ls and the stat before each. Holds one block of
// a file in memory, whatever the file's size.
class SyncService {
 public:
  // A legacy phone knows only the first form of each message.
  SyncService(base::UniqueFd client, bool legacy);

  // Serves requests until the client ends.
  void Run();

 private:
  bool Answer(uint32_t id, const std::string& path);
  bool Stat(uint32_t id, const std::string& path);
  bool List(bool second_form, const std::string& path);
  // "PATH,MODE" with a decimal mode.
  bool Send(const std::string& path_and_mode);
  bool Send2(const std::string& path);
  bool TakeEntry(const std::string& path, unsigned mode);
  bool TakeFile(const std::string& path, unsigned mode);
  bool TakeLink(const std::string& path);
  bool TakeData(int file);
  bool Receive(const std::string& path);
  bool Receive2(const std::string& path);
  bool Refuse(const std::string& reason);
  bool RefuseWithErrno(const std::string& reason);
  bool RefuseRestOfFile(const std::string& reason);
  bool Reply(std::string_view message) const;
  // The word and the rest apart, as a server sends the replies to stat, list and receive; see wire.h.
  bool ReplyInTwoPieces(std::string_view message) const;

  base::UniqueFd client_;
  const bool legacy_;
  std::vector<char> block_;
};

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_SYNC_SERVICE_H
