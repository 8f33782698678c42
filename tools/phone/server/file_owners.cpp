#include "tools/phone/server/file_owners.h"

#include <array>

namespace darokleim::phone {

namespace {

struct Account {
  const char* name;
  int number;
};

constexpr std::array<Account, 5> kUsers = {
    {{"root", 0}, {"system", 1000}, {"media_rw", 1023}, {"shell", 2000}, {"nobody", 9999}}};

constexpr std::array<Account, 10> kGroups = {{{"root", 0},
                                              {"system", 1000},
                                              {"log", 1007},
                                              {"sdcard_rw", 1015},
                                              {"media_rw", 1023},
                                              {"sdcard_r", 1028},
                                              {"shell", 2000},
                                              {"cache", 2001},
                                              {"everybody", 9997},
                                              {"nobody", 9999}}};

template <size_t kCount>
int NumberOf(const std::array<Account, kCount>& accounts, const std::string& name) {
  for (const Account& account : accounts) {
    if (name == account.name) return account.number;
  }
  return 0;
}

std::string Line(const std::string& user, const std::string& group, const std::string& path) {
  return std::to_string(NumberOf(kUsers, user)) + " " + std::to_string(NumberOf(kGroups, group)) + " " +
         path + "\n";
}

// Since Android 7 the group is that of everybody, and access is decided elsewhere.
std::string StorageGroup(const PhoneOptions& options) {
  if (!options.storage_group.empty()) return options.storage_group;
  if (options.storage == "sdcard0") return "sdcard_r";
  return options.generation == Generation::kLegacy ? "sdcard_rw" : "everybody";
}

}  // namespace

std::string OwnersFile(const PhoneOptions& options, const std::vector<StorageVolume>& volumes) {
  std::string text = Line("root", "root", "/") + Line("system", "cache", "/cache") +
                     Line("system", "system", "/data") + Line("root", "root", "/data/local") +
                     Line("shell", "shell", "/data/local/tmp") + Line("media_rw", "media_rw", "/data/media") +
                     Line("media_rw", "media_rw", "/mnt/media_rw") + Line("root", "shell", "/system/bin");
  for (const StorageVolume& volume : volumes) text += Line("root", StorageGroup(options), volume.path);
  return text;
}

std::string MountsFile(const std::vector<StorageVolume>& volumes) {
  std::string text =
      "/dev/block/dm-0 / ext4 ro,seclabel,relatime 0 0\n"
      "tmpfs /dev tmpfs rw,seclabel,nosuid,relatime,mode=755 0 0\n"
      "/dev/block/dm-5 /data ext4 rw,seclabel,nosuid,nodev,noatime 0 0\n";
  for (const StorageVolume& volume : volumes) {
    text += "/dev/fuse " + volume.path + " fuse rw,nosuid,nodev,noexec,noatime 0 0\n";
  }
  return text;
}

std::string PasswdFile() {
  std::string text;
  for (const Account& user : kUsers) {
    const std::string number = std::to_string(user.number);
    text.append(user.name).append(":x:").append(number).append(":").append(number);
    text.append("::/:/system/bin/sh\n");
  }
  return text;
}

std::string GroupFile() {
  std::string text;
  for (const Account& group : kGroups)
    text.append(group.name).append(":x:").append(std::to_string(group.number)).append(":\n");
  return text;
}

}  // namespace darokleim::phone
