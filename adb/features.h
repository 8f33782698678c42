// What a phone, or the server, says it can do.
#ifndef DAROKLEIM_ADB_FEATURES_H
#define DAROKLEIM_ADB_FEATURES_H

#include <string>
#include <string_view>

#include "adb/transport.h"

namespace darokleim::adb {

class FeatureSet {
 public:
  FeatureSet() = default;
  // Names separated by commas, as the server sends them.
  explicit FeatureSet(std::string names) : names_(std::move(names)) {}

  bool Has(std::string_view name) const;
  // Separate exit status, output and error output of a shell command.
  bool shell_v2() const { return Has("shell_v2"); }
  // The second forms of the sync messages.
  bool stat_v2() const { return Has("stat_v2"); }
  bool list_v2() const { return Has("ls_v2"); }
  bool send_receive_v2() const { return Has("sendrecv_v2"); }

  const std::string& names() const { return names_; }

 private:
  std::string names_;
};

// Of a phone, as far as the server knows them too. It may be another server, or another phone of the same serial, the
// next time.
Result<FeatureSet> QueryFeatures(const ServerAddress& server, const DeviceSelector& device,
                                 const Limits& limits);
// Of the server itself.
Result<FeatureSet> QueryServerFeatures(const ServerAddress& server, const Limits& limits);

}  // namespace darokleim::adb

#endif  // DAROKLEIM_ADB_FEATURES_H
