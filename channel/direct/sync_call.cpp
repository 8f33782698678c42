#include "channel/direct/sync_call.h"

#include <sys/stat.h>

#include "channel/direct/kept_connections.h"

namespace darokleim::channel::direct {
namespace {

std::string KeyOf(const Call& call) {
  const adb::ServerAddress& server = call.server;
  std::string key = std::to_string(static_cast<int>(server.kind)) + ' ' + std::to_string(server.port);
  for (const std::string* part : {&server.host, &server.name, &call.form.serial}) {
    key.append(1, '\0').append(*part);
  }
  return key;
}

// Those that adb 29 uses: with others, phones word their refusals for longer paths.
adb::FeatureSet FeaturesOfAdb(const adb::FeatureSet& features) {
  return adb::FeatureSet(std::string(features.stat_v2() ? "stat_v2," : "") +
                         (features.list_v2() ? "ls_v2" : ""));
}

Attempt RunOnNewConnection(const Call& call, const std::string& key,
                           const std::function<SyncAttempt(adb::SyncConnection*)>& run) {
  const adb::Result<adb::FeatureSet> features = adb::QueryFeatures(call.server, call.device(), call.limits);
  if (!features.ok()) return EndBefore(call, "adb: error: failed to get feature set: ", features.error());
  constexpr std::string_view kNotConnected = "adb: error: connect failed: ";
  adb::Result<adb::DeviceConnection> phone = adb::SelectDevice(call.server, call.device(), call.limits);
  if (!phone.ok()) return EndBefore(call, kNotConnected, phone.error());
  adb::Result<adb::SyncConnection> sync =
      adb::SyncConnection::Start(std::move(phone->connection), FeaturesOfAdb(*features), call.limits);
  if (!sync.ok()) return EndAfter(call, kNotConnected, sync.error());
  const SyncAttempt attempt = run(&*sync);
  KeepConnection(key, *std::move(sync));
  return attempt.value_or(Ending{Ending::kBroken});
}

}  // namespace

Attempt RunOnSyncConnection(const Call& call, const std::function<SyncAttempt(adb::SyncConnection*)>& run) {
  const std::string key = KeyOf(call);
  if (std::optional<adb::SyncConnection> kept = TakeKeptConnection(key)) {
    if (const SyncAttempt attempt = run(&*kept)) {
      KeepConnection(key, *std::move(kept));
      return *attempt;
    }
  }
  return RunOnNewConnection(call, key, run);
}

adb::Result<adb::FileStatus> StatOfTarget(adb::SyncConnection* sync, const std::string& path,
                                          const adb::Limits& limits) {
  using Links = adb::SyncConnection::Links;
  adb::Result<adb::FileStatus> status = sync->Stat(path, Links::kFollowed, limits);
  if (status.ok() || status.error().code != adb::ErrorCode::kUnsupported) return status;
  status = sync->Stat(path, Links::kThemselves, limits);
  if (!status.ok() || !S_ISLNK(status->mode)) return status;
  const adb::Result<adb::FileStatus> inside = sync->Stat(path + '/', Links::kThemselves, limits);
  if (!inside.ok() && inside.error().code != adb::ErrorCode::kTooLong) return inside.error();
  const bool folder = inside.ok() && IsThere(*inside);
  status->mode = (status->mode & 07777U) | (folder ? S_IFDIR : S_IFREG);
  status->size = 0;
  return status;
}

bool IsThere(const adb::FileStatus& status) {
  if (status.second_form) return status.error == 0;
  return status.mode != 0 || status.size != 0 || status.modified != 0;
}

Ending FailTransfer(const Call& call, const std::string& text, const std::string& report) {
  return call.Finish(kSyncError + text + '\n' + report, 1);
}

std::string PathTooLong(size_t length) {
  return std::string(kSyncError) + "SendRequest failed: path too long: " + std::to_string(length) + '\n';
}

SyncAttempt EndOfFirstRequest(const adb::Error& error) {
  if (error.code == adb::ErrorCode::kConnectionBroken) return std::nullopt;
  return EndWithin(error);
}

}  // namespace darokleim::channel::direct
