#include "tests/phone/trial_place.h"

#include <sys/stat.h>

#include <utility>

#include "tests/phone/phone_under_test.h"

namespace darokleim::test {

namespace {

namespace fs = std::filesystem;

constexpr char kOther[] = "nobody's business";
constexpr const char* kOthers[] = {"x", "xXy"};

// The phone's shell is another user.
void MakeFolder(const fs::path& folder) {
  if (fs::exists(folder)) return;
  MakeFolder(folder.parent_path());
  fs::create_directory(folder);
  fs::permissions(folder, fs::perms::all);
}

void Put(const fs::path& file, const std::string& content) {
  MakeFolder(file.parent_path());
  WriteFile(file.string(), content);
  fs::permissions(file, static_cast<fs::perms>(0666));
}

mode_t ModeOf(const fs::path& file) {
  struct stat status = {};
  return stat(file.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

}  // namespace

TrialPlace::TrialPlace(std::string serial, std::string name, const fs::path& phone_files,
                       const fs::path& host_folder, size_t number)
    : serial_(std::move(serial)),
      name_(std::move(name)),
      phone_files_(phone_files),
      phone_folder_("/data/local/tmp/trials/" + std::to_string(number)),
      seen_folder_(SeenPath(phone_folder_)),
      host_folder_(host_folder / std::to_string(number)) {
  MakeFolder(host_folder_);
  for (const char* other : kOthers) PutOnPhone(other, kOther);
}

TrialPlace::~TrialPlace() {
  std::error_code error;
  fs::remove_all(seen_folder_, error);
  fs::remove_all(host_folder_, error);
}

void TrialPlace::PutOnPhone(const std::string& entry, const std::string& content) const {
  Put(Seen(entry), content);
}

void TrialPlace::PutOnHost(const std::string& entry, const std::string& content) const {
  Put(OnHost(entry), content);
}

bool TrialPlace::OthersAreUntouched() const {
  for (const char* other : kOthers) {
    if (ReadFile(Seen(other).string()) != kOther || ModeOf(Seen(other)) != 0666) return false;
  }
  return true;
}

}  // namespace darokleim::test
