// What a phone, behind this server, can do.
#ifndef DAROKLEIM_CLIENT_FEATURES_H
#define DAROKLEIM_CLIENT_FEATURES_H

#include <optional>
#include <string_view>

#include "adb/features.h"
#include "client/context.h"

namespace darokleim::client {

// Asked for once, where a call needs several connections. Not for longer: the next time it may be another phone of the same
// serial, or another server.
class Features {
 public:
  explicit Features(dk_device* device) : device_(device) {}

  dk_device* device() const { return device_; }
  // `what` is what the caller does, for the error.
  Result<const adb::FeatureSet*> Get(std::string_view what, const Limits& limits) {
    if (!known_) {
      auto features = AskDevice(device_, limits, [&](const auto& server, const auto& selector) {
        return adb::QueryFeatures(server, selector, limits);
      });
      if (!features.ok()) return DeviceError(device_, features.error(), what);
      known_ = *std::move(features);
    }
    return &*known_;
  }
  // Whether it has a shell that tells output, errors and exit status apart; false until it was asked.
  bool has_shell_v2() const { return known_ && known_->shell_v2(); }

 private:
  dk_device* const device_;
  std::optional<adb::FeatureSet> known_;
};

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_FEATURES_H
