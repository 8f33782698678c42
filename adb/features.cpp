#include "adb/features.h"

#include "adb/host_services.h"

namespace darokleim::adb {

bool FeatureSet::Has(std::string_view name) const {
  std::string_view rest = names_;
  for (;;) {
    const size_t comma = rest.find(',');
    if (rest.substr(0, comma) == name) return !name.empty();
    if (comma == std::string_view::npos) return false;
    rest.remove_prefix(comma + 1);
  }
}

Result<FeatureSet> QueryFeatures(const ServerAddress& server, const DeviceSelector& device,
                                 const Limits& limits) {
  Result<std::string> names = Query(server, device.HostRequest("features"), limits);
  if (!names.ok()) return names.TakeError();
  return FeatureSet(*std::move(names));
}

Result<FeatureSet> QueryServerFeatures(const ServerAddress& server, const Limits& limits) {
  Result<std::string> names = Query(server, "host:host-features", limits);
  if (!names.ok()) return names.TakeError();
  return FeatureSet(*std::move(names));
}

}  // namespace darokleim::adb
