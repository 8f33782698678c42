// dk_write: what the caller hands out, as one file of the phone.
#include <ctime>
#include <vector>

#include "client/phone_path.h"
#include "client/transfer/staging.h"
#include "client/transfer/target_check.h"

namespace darokleim::client {
namespace {

Status WriteFrom(dk_device* device, const std::string& path, std::uint32_t mode, std::int64_t modified,
                 bool replace, dk_source source, void* user, const Limits& limits) {
  const std::string what = "write " + Shown(path);
  Features features(device);
  auto there = TargetCheck(&features, limits).Look({path});
  if (!there.ok()) return there.TakeError();
  constexpr int kExists = 17, kIsFolder = 21;
  switch (Decide(replace ? DK_REPLACE : DK_FAIL_IF_EXISTS, there->front(), 0, 0)) {
    case Decision::kIsFolder:
      return FromPhoneErrno(kIsFolder, what, path);
    case Decision::kExists:
      return FromPhoneErrno(kExists, what, path);
    case Decision::kSkip:
    case Decision::kTransfer:
      break;
  }
  const std::string folder = ParentOf(path), name(NameOf(path));
  Staging staging(&features);
  auto sync = OpenSync(&features, what, limits);
  if (!sync.ok()) return sync.TakeError();
  adb::SyncConnection& connection = sync->connection;
  staging.Expect(folder);
  adb::Status sent =
      connection.BeginSend(staging.PathFor(folder, name), adb::kRegularFile | (mode & 0777), limits);
  std::vector<char> block(kBlock);
  while (sent.ok()) {
    const std::int64_t count = source(user, block.data(), block.size());
    if (count < 0 || count > static_cast<std::int64_t>(block.size())) {
      return Stopped(what);
    }
    if (count == 0) break;
    sent = connection.SendData({block.data(), static_cast<std::size_t>(count)}, limits);
  }
  const std::int64_t time = modified == 0 ? std::time(nullptr) : modified;
  if (sent.ok()) sent = connection.EndSend(static_cast<std::uint32_t>(time), limits);
  if (sent.ok()) sent = connection.AwaitSends(0, limits);
  if (!sent.ok()) return SyncError(device, sent.error(), what, path);
  staging.Whole(folder, name);
  return staging.Finish(limits, [](Error error) -> Status { return error; });
}

}  // namespace
}  // namespace darokleim::client

using namespace darokleim;

dk_code dk_write(dk_device* device, const char* path, uint32_t mode, int64_t mtime, bool replace,
                 dk_source source, void* user, const dk_call* call) {
  return client::Answer(call, [&](const adb::Limits& limits) -> client::Status {
    if (device == nullptr || source == nullptr) return client::InvalidArgument("a null pointer");
    constexpr std::int64_t kMostTime = 0xffffffff;
    if (mtime < 0 || mtime > kMostTime) return client::InvalidArgument("a time that adb cannot carry");
    auto target = client::ReadPath(path);
    if (!target.ok()) return target.TakeError();
    return client::WriteFrom(device, *target, mode, mtime, replace, source, user, limits);
  });
}
