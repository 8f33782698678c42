// Copies the photos and videos of a phone's camera to this computer. Files that were copied before are skipped, so the
// program can be interrupted with Ctrl-C at any time and run again.
//
//   photo_backup RESOURCES FOLDER SERIAL
//
// RESOURCES is a folder with the programs adb (for this computer) and busybox (for the phone).
#include <darokleim.h>
#include <json/json.h>
#include <signal.h>
#include <stdlib.h>

#include <filesystem>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr char kLogContext[] = "photo_backup";
constexpr char kSuffixes[] = "jpg;jpeg;png;heic;dng;gif;mp4;mov";

bool cancel = false;

void CancelOnSignal(int) {
  __atomic_store_n(&cancel, true, __ATOMIC_RELAXED);
}

// Owns a block of the library.
struct Block {
  char* text = nullptr;
  int length = 0;

  Block() = default;
  Block(const Block&) = delete;
  Block& operator=(const Block&) = delete;
  ~Block() { AdbFreeResource(&text); }
};

void Check(int code, const std::string& what) {
  if (code == ADB_CHANNEL_CANCELLED) throw std::runtime_error("interrupted");
  if (code == ADB_RESULT_DEVICE_UNAUTHORIZED) {
    throw std::runtime_error(what + ": allow USB debugging on the screen of the phone");
  }
  if (code != ADB_RESULT_OK) throw std::runtime_error(what + ": error " + std::to_string(code));
}

void Start(const char* resources) {
  setenv("DAROKLEIM_CHANNEL_ASSIST", "1", 0);  // phones of every generation, paths of every kind
  Check(AdbSdkInit(resources, kLogContext, fs::temp_directory_path().c_str()), resources);
}

std::string CameraFolder(const std::string& serial) {
  char storage[64];
  Check(AdbGetFirstSDCardPath(serial.c_str(), storage, sizeof storage, &cancel), "find the storage");
  return std::string(storage) + "/DCIM";
}

std::vector<std::string> Photos(const std::string& serial, const std::string& folder) {
  Block listing;
  const int code =
      AdbGetFilesBySuffix(serial.c_str(), folder.c_str(), kSuffixes, &listing.text, &listing.length, &cancel);
  if (code == ADB_RESULT_NO_SUCH_FILE) return {};  // a phone that never took a photo
  Check(code, "list " + folder);

  std::vector<std::string> photos;
  if (listing.text == nullptr) return photos;
  Json::Value document;
  std::string problem;
  const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
  if (!reader->parse(listing.text, listing.text + listing.length, &document, &problem)) {
    throw std::runtime_error(problem);
  }
  for (const Json::Value& file : document["files"]) photos.push_back(file["file"].asString());
  return photos;
}

// Where a file of the phone goes; never outside the destination, whatever the phone calls it.
fs::path HostPath(const std::string& device_path, const std::string& camera, const fs::path& destination) {
  const fs::path below = fs::path(device_path).lexically_relative(camera);
  if (below.empty() || *below.begin() == "..") throw std::runtime_error("unexpected path " + device_path);
  return destination / below;
}

bool IsCopied(const std::string& serial, const std::string& device_path, const fs::path& host_path) {
  std::error_code absent;
  const auto host_size = fs::file_size(host_path, absent);
  if (absent) return false;
  unsigned long long device_size = 0;
  Check(AdbGetFileSize(serial.c_str(), device_path.c_str(), &device_size, &cancel), device_path);
  return host_size == device_size;
}

// Copies under another name first: a file under its own name is always complete.
void Copy(const std::string& serial, const std::string& device_path, const fs::path& host_path) {
  fs::create_directories(host_path.parent_path());
  const fs::path unfinished = host_path.string() + ".part";
  Check(AdbPullFile(serial.c_str(), device_path.c_str(), unfinished.c_str(), &cancel), device_path);
  fs::rename(unfinished, host_path);
}

void BackUp(const std::string& serial, const fs::path& destination) {
  const std::string camera = CameraFolder(serial);
  int copied = 0;
  int present = 0;
  for (const std::string& photo : Photos(serial, camera)) {
    const fs::path host_path = HostPath(photo, camera, destination);
    if (IsCopied(serial, photo, host_path)) {
      ++present;
      continue;
    }
    Copy(serial, photo, host_path);
    std::cout << host_path.string() << '\n';
    ++copied;
  }
  std::cout << copied << " copied, " << present << " already copied\n";
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc != 4) {
    std::cerr << "usage: " << argv[0] << " RESOURCES FOLDER SERIAL\n";
    return 2;
  }
  signal(SIGINT, CancelOnSignal);
  Start(argv[1]);
  BackUp(argv[3], argv[2]);
  return 0;
} catch (const std::exception& error) {
  std::cerr << argv[0] << ": " << error.what() << '\n';
  return 1;
}
