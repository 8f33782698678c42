#include "tools/phone/device/programs/pm_sessions.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <random>

#include "tools/phone/common/faults.h"
#include "tools/phone/common/io.h"
#include "tools/phone/common/numbers.h"
#include "tools/phone/device/layout.h"
#include "tools/phone/device/packages/installer.h"
#include "tools/phone/device/properties.h"
#include "tools/phone/device/records.h"
#include "tools/phone/device/users.h"

namespace darokleim::phone {

namespace {

namespace fs = std::filesystem;

// Where packages wait until they are complete.
constexpr char kStaging[] = "/data/app/.staging";

struct InstallWords {
  InstallOptions options;
  std::optional<uint64_t> size;  // of what comes on the standard input
  std::string user = "0";
  Words names;
};

// Options that take a value which means nothing here, such as the installer's name.
bool TakesValue(const std::string& option) {
  return option == "-i" || option == "--abi" || option == "-p" || option == "--install-location" ||
         option == "--originating-uri" || option == "--referrer" || option == "--pkg";
}

InstallWords SortInstallWords(const Words& words) {
  InstallWords sorted;
  // Until Android 8 an installed package was only replaced when asked.
  sorted.options.replace = !IsLegacyPhone();
  for (size_t i = 1; i < words.size(); ++i) {
    const std::string& word = words[i];
    if (word == "-r") {
      sorted.options.replace = true;
    } else if (word == "-R") {
      sorted.options.replace = false;
    } else if (word == "-d") {
      sorted.options.allow_downgrade = true;
    } else if (word == "-t") {
      sorted.options.allow_test = true;
    } else if (word == "-S" && i + 1 < words.size()) {
      sorted.size = ParseNumber<uint64_t>(words[++i]).value_or(0);
    } else if (word == "--user" && i + 1 < words.size()) {
      sorted.user = words[++i];
    } else if (TakesValue(word)) {
      ++i;
    } else if (word == "-" || (!word.empty() && word[0] != '-')) {
      sorted.names.push_back(word);
    }
  }
  return sorted;
}

int Report(const std::string& failure) {
  if (failure.empty()) {
    std::printf("Success\n");
    return 0;
  }
  WriteLog('W', "PackageManager", "Install failed: " + failure);
  std::printf("Failure [%s]\n", failure.c_str());
  return 1;
}

// As many bytes as the client announced, from the standard input into a file. Empty, or why not.
std::string Receive(uint64_t size, const std::string& path) {
  const base::UniqueFd file(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
  std::vector<char> buffer(64 * 1024);
  bool written = file.valid();
  uint64_t left = size;
  while (left > 0) {
    const ssize_t count =
        ReadSome(STDIN_FILENO, buffer.data(), static_cast<size_t>(std::min<uint64_t>(buffer.size(), left)));
    if (count <= 0) return "INSTALL_FAILED_INTERNAL_ERROR: Unexpected end of input";
    left -= static_cast<uint64_t>(count);
    // The rest is read even when there is no room, or the client could not read the answer.
    written = written && WriteAll(file.get(), buffer.data(), static_cast<size_t>(count));
  }
  return written ? "" : "INSTALL_FAILED_INSUFFICIENT_STORAGE";
}

class StagingFolder {
 public:
  // The package service does the work, not the shell of its client, whose end it sees as that of the input.
  StagingFolder() : path_(std::string(kStaging) + "/" + std::to_string(getpid())) {
    std::error_code error;
    signal(SIGHUP, SIG_IGN);
    fs::create_directories(path_, error);
  }
  ~StagingFolder() {
    std::error_code error;
    fs::remove_all(path_, error);
  }
  StagingFolder(const StagingFolder&) = delete;
  StagingFolder& operator=(const StagingFolder&) = delete;
  std::string file() const { return path_ + "/base.apk"; }

 private:
  std::string path_;
};

// As a package manager that names the file first puts it: no more than the name, unless a fault has the words.
std::string NameOf(const std::string& failure) {
  return Faults(kSetupFolder).Has(fault::kInstallFailure) ? failure : failure.substr(0, failure.find(':'));
}

int InstallFile(const std::string& path, const InstallOptions& options) {
  // Old package managers name the file first.
  if (IsLegacyPhone()) std::printf("\tpkg: %s\n", path.c_str());
  if (access(path.c_str(), R_OK) != 0) {
    if (IsLegacyPhone()) return Report("INSTALL_FAILED_INVALID_URI");
    std::fprintf(stderr, "Error: Unable to open file: %s\nConsider using a file under /data/local/tmp/\n",
                 path.c_str());
    return 255;
  }
  const std::string failure = Install({path}, options);
  return Report(IsLegacyPhone() ? NameOf(failure) : failure);
}

int InstallOne(const InstallWords& words) {
  if (!MayActFor(words.user)) return 255;
  if (words.size && (words.names.empty() || words.names[0] == "-")) {
    const StagingFolder staging;
    const std::string failure = Receive(*words.size, staging.file());
    return Report(failure.empty() ? Install({staging.file()}, words.options) : failure);
  }
  if (words.names.empty()) {
    std::fprintf(stderr, "Error: no package specified\n");
    return 1;
  }
  return InstallFile(words.names[0], words.options);
}

std::string SessionFolder(const std::string& session) {
  return std::string(kStaging) + "/session-" + session;
}

// The folder of an open session; empty, after a complaint, when there is none.
std::string OpenSession(const InstallWords& words) {
  const std::string session = words.names.empty() ? "" : words.names[0];
  const bool number = !session.empty() && session.find_first_not_of("0123456789") == std::string::npos;
  std::string folder = SessionFolder(session);
  if (number && fs::is_directory(folder)) return folder;
  std::fprintf(stderr, "Error: java.lang.SecurityException: Caller has no access to session %s\n",
               session.c_str());
  return "";
}

int CreateSession(const InstallWords& words) {
  if (!MayActFor(words.user)) return 255;
  const std::string session = std::to_string(100000000 + std::random_device()() % 1900000000);
  std::error_code error;
  fs::create_directories(SessionFolder(session), error);
  std::string options;
  if (words.options.replace) options += 'r';
  if (words.options.allow_downgrade) options += 'd';
  if (words.options.allow_test) options += 't';
  if (!WriteFile(SessionFolder(session) + "/options", options)) {
    std::printf("Failure [INSTALL_FAILED_INSUFFICIENT_STORAGE]\n");
    return 1;
  }
  std::printf("Success: created install session [%s]\n", session.c_str());
  return 0;
}

// install-write [-S SIZE] SESSION NAME [PATH|-]
int WriteToSession(const InstallWords& words) {
  const std::string folder = OpenSession(words);
  if (folder.empty()) return 1;
  if (words.names.size() < 2 || words.names[1].find('/') != std::string::npos) {
    std::fprintf(stderr, "Error: must specify a name\n");
    return 1;
  }
  const std::string target = folder + "/" + words.names[1];
  uint64_t size = words.size.value_or(0);
  std::string failure;
  if (words.names.size() < 3 || words.names[2] == "-") {
    failure = Receive(size, target);
  } else {
    std::error_code error;
    size = fs::file_size(words.names[2], error);
    if (error || !fs::copy_file(words.names[2], target, fs::copy_options::overwrite_existing, error)) {
      failure = "INSTALL_FAILED_MEDIA_UNAVAILABLE: " + error.message();
    }
  }
  if (!failure.empty()) {
    std::printf("Failure [%s]\n", failure.c_str());
    return 1;
  }
  std::printf("Success: streamed %llu bytes\n", static_cast<unsigned long long>(size));
  return 0;
}

int CommitSession(const InstallWords& words) {
  const std::string folder = OpenSession(words);
  if (folder.empty()) return 1;
  const std::string letters = ReadFile(folder + "/options").value_or("");
  InstallOptions options;
  options.replace = letters.find('r') != std::string::npos;
  options.allow_downgrade = letters.find('d') != std::string::npos;
  options.allow_test = letters.find('t') != std::string::npos;
  std::vector<std::string> apks;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    if (entry.path().filename() != "options") apks.push_back(entry.path().string());
  }
  std::sort(apks.begin(), apks.end());
  const int status = Report(Install(apks, options));
  std::error_code error;
  fs::remove_all(folder, error);
  return status;
}

int AbandonSession(const InstallWords& words) {
  const std::string folder = OpenSession(words);
  if (folder.empty()) return 1;
  std::error_code error;
  fs::remove_all(folder, error);
  std::printf("Success\n");
  return 0;
}

}  // namespace

std::optional<int> RunPmInstall(const Words& words) {
  const std::string command = words.empty() ? "" : words[0];
  if (command == "install") return InstallOne(SortInstallWords(words));
  if (command == "install-create") return CreateSession(SortInstallWords(words));
  if (command == "install-write") return WriteToSession(SortInstallWords(words));
  if (command == "install-commit") return CommitSession(SortInstallWords(words));
  if (command == "install-abandon") return AbandonSession(SortInstallWords(words));
  return std::nullopt;
}

}  // namespace darokleim::phone
