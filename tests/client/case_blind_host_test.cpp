// Names of the phone that are two there, and one on this computer.
#include "tests/client/case_blind_host.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <map>

#include "tests/client/calls.h"
#include "tests/support/file_content.h"
#include "tests/support/scripted_server.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::client_test {
namespace {

namespace fs = std::filesystem;
using test::Number32;
using test::Number64;
using test::WriteBytes;

// Has the files photo.jpg and PHOTO.JPG in /sdcard, and the folders Album and ALBUM with a file a in each. A file's content is its
// path.
class CasePhone {
 public:
  CasePhone()
      : phone_("shell_v2,stat_v2,ls_v2", [](const std::string&, int connection) { Serve(connection); }),
        client_("tcp:" + phone_.port()) {}
  dk_device* device() const { return client_.device(); }

 private:
  static std::uint32_t ModeOf(const std::string& path) {
    const std::string name = path.substr(path.rfind('/') + 1);
    return name == "sdcard" || name == "Album" || name == "ALBUM" ? 040755 : 0100644;
  }
  static std::string Status(const std::string& id, const std::string& path) {
    return id + Number32(0) + Number64(1) + Number64(2) + Number32(ModeOf(path)) + Number32(1) + Number32(0) +
           Number32(0) + Number64(path.size()) + Number64(7) + Number64(7) + Number64(7);
  }
  static std::string List(const std::string& folder) {
    const bool is_root = folder == "/sdcard";
    std::string list;
    for (const std::string& name : is_root
                                       ? std::vector<std::string>{"photo.jpg", "PHOTO.JPG", "Album", "ALBUM"}
                                       : std::vector<std::string>{"a"}) {
      list += Status("DNT2", folder + "/" + name) + Number32(static_cast<std::uint32_t>(name.size())) + name;
    }
    return list + "DONE" + std::string(72, '\0');
  }
  static void Serve(int connection) {
    WriteBytes(connection, "OKAY");
    for (;;) {
      const std::string header = test::ReadBytes(connection, 8);
      if (header.size() < 8) return;
      const std::string path = test::ReadBytes(connection, static_cast<unsigned char>(header[4]));
      const std::string id = header.substr(0, 4);
      if (id == "LIS2") {
        WriteBytes(connection, List(path));
      } else if (id == "RECV") {
        WriteBytes(connection,
                   "DATA" + Number32(static_cast<std::uint32_t>(path.size())) + path + "DONE" + Number32(0));
      } else {
        WriteBytes(connection, Status(id, path));
      }
    }
  }

  const test::ScriptedPhone phone_;
  const Client client_;
};

class CaseBlind : public testing::TestWithParam<dk_existing> {
 protected:
  struct Failure {
    dk_code code;
    bool on_host;
    std::string path;
    bool operator==(const Failure& other) const {
      return code == other.code && on_host == other.on_host && path == other.path;
    }
  };
  static bool Add(void* user, const dk_error* error) {
    static_cast<std::vector<Failure>*>(user)->push_back(
        {dk_error_code(error), dk_error_on_host(error), dk_error_path(error)});
    return true;
  }
  std::vector<Failure> Pull(const std::vector<dk_item>& items) const {
    std::vector<Failure> failures;
    dk_transfer_options options = DK_TRANSFER_OPTIONS_INIT;
    options.existing = GetParam();
    options.keep_going = true;
    options.on_error = Add;
    options.user = &failures;
    const dk_code code = dk_pull(phone_.device(), items.data(), items.size(), &options, nullptr, nullptr);
    EXPECT_EQ(code, failures.empty() ? DK_OK : DK_PARTLY_DONE);
    return failures;
  }
  std::map<std::string, std::string> Content() const {
    std::map<std::string, std::string> files;
    const std::string root = directory_.path();
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
      if (entry.is_regular_file())
        files[entry.path().native().substr(root.size() + 1)] = test::ReadFile(entry.path());
    }
    return files;
  }
  std::string File(const std::string& name) const { return directory_.File(name); }

  const test::TemporaryDirectory directory_;
  const CasePhone phone_;
};
std::string NameOfPolicy(const testing::TestParamInfo<dk_existing>& info) {
  static const char* const kNames[] = {"fail", "replace", "skip_same", "skip_existing"};
  return kNames[info.param];
}
INSTANTIATE_TEST_SUITE_P(, CaseBlind,
                         testing::Values(DK_FAIL_IF_EXISTS, DK_REPLACE, DK_SKIP_SAME, DK_SKIP_EXISTING),
                         NameOfPolicy);

using Files = std::map<std::string, std::string>;

TEST_P(CaseBlind, HostsGetOneOfTwoFilesAndOneOfTwoFoldersAndAnErrorForEachOther) {
  const CaseBlindHost host;
  const std::string target = File("back");
  const std::vector<Failure> met = {{DK_UNSAFE_NAME, true, target + "/PHOTO.JPG"},
                                    {DK_UNSAFE_NAME, true, target + "/ALBUM"}};
  EXPECT_THAT(Pull({{"/sdcard", target.c_str()}}), testing::UnorderedElementsAreArray(met));
  const Files first = {{"back/photo.jpg", "/sdcard/photo.jpg"}, {"back/Album/a", "/sdcard/Album/a"}};
  EXPECT_EQ(Content(), first);
  // Once more, with all of it there.
  std::vector<Failure> again = met;
  if (GetParam() == DK_FAIL_IF_EXISTS) {
    for (const char* name : {"/photo.jpg", "/Album/a"}) again.push_back({DK_EXISTS, true, target + name});
  }
  EXPECT_THAT(Pull({{"/sdcard", target.c_str()}}), testing::UnorderedElementsAreArray(again));
  EXPECT_EQ(Content(), first);
}

TEST_P(CaseBlind, HostsKeepAFileThatIsSpelledOtherwise) {
  const CaseBlindHost host;
  test::WriteFile(File("NAME"), "older");
  const std::string target = File("name"), x = File("x"), big_x = File("X");
  const std::vector<Failure> failures = Pull({{"/sdcard/photo.jpg", target.c_str()},
                                              {"/sdcard/photo.jpg", x.c_str()},
                                              {"/sdcard/PHOTO.JPG", big_x.c_str()}});
  EXPECT_THAT(failures, testing::UnorderedElementsAre(Failure{DK_UNSAFE_NAME, true, target},
                                                      Failure{DK_UNSAFE_NAME, true, big_x}));
  EXPECT_EQ(Content(), (Files{{"NAME", "older"}, {"x", "/sdcard/photo.jpg"}}));
}

TEST_P(CaseBlind, OthersGetAllOfThem) {
  const std::string target = File("back");
  EXPECT_THAT(Pull({{"/sdcard", target.c_str()}}), testing::IsEmpty());
  EXPECT_EQ(Content().size(), 4U);
}

}  // namespace
}  // namespace darokleim::client_test
