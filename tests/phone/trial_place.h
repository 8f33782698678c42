#ifndef DAROKLEIM_TESTS_PHONE_TRIAL_PLACE_H
#define DAROKLEIM_TESTS_PHONE_TRIAL_PLACE_H

#include <filesystem>
#include <string>

namespace darokleim::test {

// Where one function is tried on one name: a folder on the phone and one on the host, both new. On the phone there
// are other files beside it, which nothing may touch: those that a name falls apart to, or is taken for a pattern of.
class TrialPlace {
 public:
  // phone_files: where the host sees the files of the phone.
  TrialPlace(std::string serial, std::string name, const std::filesystem::path& phone_files,
             const std::filesystem::path& host_folder, size_t number);
  ~TrialPlace();
  TrialPlace(const TrialPlace&) = delete;
  TrialPlace& operator=(const TrialPlace&) = delete;

  const char* serial() const { return serial_.c_str(); }
  const std::string& name() const { return name_; }

  // The path of this entry as the phone knows it, and as the host sees it.
  std::string OnPhone(const std::string& entry) const { return phone_folder_ + "/" + entry; }
  std::filesystem::path Seen(const std::string& entry) const { return seen_folder_ / entry; }
  std::string OnHost(const std::string& entry) const { return (host_folder_ / entry).string(); }
  // Any path of the phone, as the host sees it.
  std::filesystem::path SeenPath(const std::string& phone_path) const {
    return phone_files_.string() + phone_path;
  }

  // Writes a file, with the folders above it.
  void PutOnPhone(const std::string& entry, const std::string& content) const;
  void PutOnHost(const std::string& entry, const std::string& content) const;

  bool OthersAreUntouched() const;

 private:
  std::string serial_;
  std::string name_;
  std::filesystem::path phone_files_;
  std::string phone_folder_;
  std::filesystem::path seen_folder_;
  std::filesystem::path host_folder_;
};

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_PHONE_TRIAL_PLACE_H
