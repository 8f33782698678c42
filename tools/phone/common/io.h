#ifndef DAROKLEIM_TOOLS_PHONE_COMMON_IO_H
#define DAROKLEIM_TOOLS_PHONE_COMMON_IO_H

#include <sys/types.h>

#include <cstddef>
#include <optional>
#include <string>

#include "base/read_some.h"
#include "base/unique_fd.h"

namespace darokleim::phone {

// Both go on after interruptions and short transfers; false when the other side is closed or on any error.
bool WriteAll(int fd, const void* data, size_t size);
bool ReadExactly(int fd, void* data, size_t size);

using base::ReadSome;

// Copies until the end of input; false when writing fails.
bool CopyUntilEnd(int from, int to);

// Carries bytes both ways until either side is closed.
void Relay(int one, int other);

void SetCloseOnExec(int fd);

struct FdPair {
  base::UniqueFd first;
  base::UniqueFd second;
};
// Close-on-exec at both ends: {read end, write end}.
std::optional<FdPair> MakePipe();
// Close-on-exec at both ends; `type` as for socket().
std::optional<FdPair> MakeSocketPair(int type);

// Ends a stream so that everything already written reaches the client: closing a socket with unread input
// would reset the connection and throw the last output away.
void FinishStream(base::UniqueFd stream);

std::optional<std::string> ReadFile(const std::string& path);
// The same for a file directly in a folder where others may put anything: links are not followed, and nothing but a
// regular file is opened.
std::optional<std::string> ReadRegularFile(const std::string& folder, const std::string& name);
// Replaces the file in one step, so that a reader never sees half of it.
bool WriteFile(const std::string& path, const std::string& content);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_COMMON_IO_H
