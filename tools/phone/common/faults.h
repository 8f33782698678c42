#ifndef DAROKLEIM_TOOLS_PHONE_COMMON_FAULTS_H
#define DAROKLEIM_TOOLS_PHONE_COMMON_FAULTS_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace darokleim::phone {

// The faults that a phone can have. Each may take a value.
namespace fault {
inline constexpr char kFullStorage[] = "full-storage";
inline constexpr char kFreeSpace[] = "free-space";
inline constexpr char kInstallFailure[] = "install-failure";
inline constexpr char kUserRestricted[] = "user-restricted";
inline constexpr char kSlow[] = "slow";
inline constexpr char kDropAfter[] = "drop-after";
inline constexpr char kBandwidth[] = "bandwidth";
inline constexpr char kNoWifi[] = "no-wifi";
inline constexpr char kUnconfirmedBackup[] = "unconfirmed-backup";
// no-find, no-stat, …: the phone lacks that command.
inline constexpr std::string_view kMissingPrefix = "no-";
}  // namespace fault

// One switched-on fault.
struct Fault {
  std::string name;
  std::string value;  // empty when it has none
};

// The switched-on faults of one phone: a file for each, in a folder that the server writes and the phone reads, so
// that a fault works from the next command on.
class Faults {
 public:
  explicit Faults(const std::string& setup_folder) : folder_(setup_folder + "/faults") {}

  std::optional<std::string> Value(std::string_view name) const;
  bool Has(std::string_view name) const { return Value(name).has_value(); }
  // Throws std::invalid_argument for an unknown name, or a value that does not fit it.
  void SwitchOn(const Fault& fault) const;
  void SwitchOff(const std::string& name) const;
  std::vector<Fault> All() const;

 private:
  std::string folder_;
};

// "NAME" or "NAME=VALUE".
Fault ParseFault(std::string_view text);

// The name and meaning of each, for the help text.
const std::vector<std::pair<std::string, std::string>>& DescribedFaults();

// "100M", "1.5G", "4096": bytes. Nothing for anything else.
std::optional<uint64_t> ParseSize(std::string_view text);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_COMMON_FAULTS_H
