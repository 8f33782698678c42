// File lists of any bytes: what the SDK writes must be what JsonCpp writes.
#include <fcntl.h>
#include <fuzzer/FuzzedDataProvider.h>
#include <unistd.h>

#include <filesystem>
#include <list>
#include <string>

#include "src/filesystem/file_info.h"
#include "src/filesystem/file_list_json.h"
#include "tests/fuzz/fuzz.h"
#include "tests/support/plain_file_list_json.h"
#include "tests/support/temporary_directory.h"

namespace {

// Another working directory for a while, in which no side file can be written: the fuzzer's own holds its corpus.
class WithoutSideFile {
 public:
  WithoutSideFile() {
    static const int elsewhere = [] {
      static const darokleim::test::TemporaryDirectory directory;
      std::filesystem::create_directory(directory.path() / "F:\\file_list.json");
      return open(directory.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    }();
    darokleim::sdk::Require(fchdir(elsewhere) == 0);
  }
  ~WithoutSideFile() {
    darokleim::sdk::Require(fchdir(before_) == 0);
    close(before_);
  }

 private:
  const int before_ = open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
};

// Mostly below the root, where the tree is.
std::list<FileInfo> FilesIn(FuzzedDataProvider& data, const std::string& root) {
  std::list<FileInfo> files;
  while (data.remaining_bytes() > 0) {
    FileInfo& info = files.emplace_back();
    info.file = (data.ConsumeIntegralInRange(0, 7) > 0 ? root + "/" : "") + data.ConsumeRandomLengthString();
    info.time = data.ConsumeRandomLengthString(30);
    info.size = data.ConsumeIntegral<std::uint64_t>();
    info.utc_timestamp = data.ConsumeIntegral<std::uint64_t>();
  }
  return files;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  FuzzedDataProvider data(bytes, size);
  const bool with_size = data.ConsumeBool();
  const std::string root = data.ConsumeRandomLengthString(20);
  const std::list<FileInfo> files = FilesIn(data, root);
  const WithoutSideFile elsewhere;
  darokleim::sdk::Require(serialization_file_list(&files, with_size) ==
                          darokleim::test::PlainFlatList(files, with_size));
  darokleim::sdk::Require(serialization_file_list_keep_folder_structer(&files, root, with_size) ==
                          darokleim::test::PlainTree(files, root, with_size));
  return 0;
}
