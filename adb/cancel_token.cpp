#include "adb/cancel_token.h"

#include <unistd.h>

#include <cerrno>

#include "adb/system.h"

namespace darokleim::adb {

Result<std::unique_ptr<CancelToken>> CancelToken::Create() {
  base::UniqueFd read_end;
  base::UniqueFd write_end;
  if (!OpenPipe(&read_end, &write_end)) return Error{ErrorCode::kSystem, "pipe", errno};
  return std::unique_ptr<CancelToken>(new CancelToken(std::move(read_end), std::move(write_end)));
}

void CancelToken::Set() {
  if (!IsOfThisProcess() || set_.exchange(true, std::memory_order_acq_rel)) return;
  const int before = errno;
  // An empty pipe takes a byte without blocking; only a signal can come between.
  while (write(write_end_.get(), "", 1) < 0 && errno == EINTR) {
  }
  errno = before;
}

void CancelToken::Reset() {
  if (!IsOfThisProcess() || !set_.exchange(false, std::memory_order_acq_rel)) return;
  char byte;
  while (read(read_end_.get(), &byte, 1) < 0 && errno == EINTR) {
  }
}

}  // namespace darokleim::adb
