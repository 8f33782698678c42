// Names that a phone sends and that lead elsewhere are left out one by one.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

#include "tests/client/calls.h"
#include "tests/support/file_content.h"
#include "tests/support/scripted_server.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::client_test {
namespace {

using test::Number32;
using test::Number64;
using testing::ElementsAre;

const std::string kWithZero("a\0b", 3);

// Lists a folder with good and bad names; every file has the content "x".
class NamingPhone {
 public:
  explicit NamingPhone(bool modern)
      : modern_(modern),
        phone_(modern ? "shell_v2,stat_v2,ls_v2" : "",
               [this](const std::string& service, int connection) { Serve(service, connection); }),
        client_("tcp:" + phone_.port()) {}

  dk_device* device() const { return client_.device(); }

 private:
  std::string Status(const std::string& id, std::uint32_t mode) const {
    if (!modern_) return id + Number32(mode) + Number32(1) + Number32(7);
    return id + Number32(0) + Number64(1) + Number64(2) + Number32(mode) + Number32(1) + Number32(0) +
           Number32(0) + Number64(1) + Number64(7) + Number64(7) + Number64(7);
  }
  std::string List() const {
    std::string list;
    for (const std::string& name :
         {std::string("."), std::string(".."), std::string("first"), std::string("../escaped"),
          std::string("/tmp/absolute"), std::string(), std::string("sub/file"), kWithZero, std::string("..."),
          std::string("last")})
      list += Status(modern_ ? "DNT2" : "DENT", 0100644) + Number32(static_cast<std::uint32_t>(name.size())) +
              name;
    return list + "DONE" + std::string(modern_ ? 72 : 16, '\0');
  }
  void Serve(const std::string& service, int connection) const {
    test::WriteBytes(connection, "OKAY");
    if (service != "sync:") {  // what an old phone's shell is asked besides
      const std::size_t end = service.rfind("'$?"), begin = service.rfind("echo '", end) + 6;
      test::WriteBytes(connection, service.substr(begin, end - begin) + "0\n");
      return;
    }
    for (;;) {
      const std::string header = test::ReadBytes(connection, 8);
      if (header.size() < 8) return;
      const std::string path = test::ReadBytes(connection, static_cast<unsigned char>(header[4]));
      const std::string id = header.substr(0, 4);
      if (id == "LIST" || id == "LIS2") {
        test::WriteBytes(connection, List());
      } else if (id == "RECV") {
        test::WriteBytes(connection, "DATA" + Number32(1) + "xDONE" + Number32(0));
      } else {
        test::WriteBytes(connection, Status(id, path == "/file" ? 0100644 : 040755));
      }
    }
  }

  const bool modern_;
  const test::ScriptedPhone phone_;
  const Client client_;
};

struct Seen {
  std::vector<std::string> names;
  std::vector<dk_code> errors;
};

bool AddName(void* seen, const dk_entry* entry) {
  static_cast<Seen*>(seen)->names.emplace_back(entry->name);
  return true;
}
bool AddError(void* seen, const dk_error* error) {
  static_cast<Seen*>(seen)->errors.push_back(dk_error_code(error));
  return true;
}

class UnsafeNames : public testing::TestWithParam<bool> {
 protected:
  const NamingPhone phone_{GetParam()};
  Seen seen_;
};
INSTANTIATE_TEST_SUITE_P(, UnsafeNames, testing::Values(true, false), [](const auto& parameter) {
  return std::string(parameter.param ? "modern" : "legacy");
});

const std::vector<dk_code> kFive(5, DK_UNSAFE_NAME);

TEST_P(UnsafeNames, AreLeftOutOfAList) {
  dk_error* error = nullptr;
  dk_call call = DK_CALL_INIT;
  call.error = &error;
  EXPECT_EQ(dk_list(phone_.device(), "/sdcard", AddName, &seen_, &call), DK_UNSAFE_NAME);
  EXPECT_THAT(seen_.names, ElementsAre("first", "...", "last"));
  EXPECT_STREQ(dk_error_path(error), "/sdcard/../escaped") << "the first of them";
  dk_error_free(error);
}

TEST_P(UnsafeNames, AreErrorsOfAWalkThatGoesOn) {
  dk_walk_options options = DK_WALK_OPTIONS_INIT;
  EXPECT_EQ(dk_walk(phone_.device(), "/sdcard", &options, AddName, &seen_, nullptr), DK_PARTLY_DONE);
  options.on_error = [](void*, const dk_error*) { return false; };
  EXPECT_EQ(dk_walk(phone_.device(), "/sdcard", &options, AddName, &seen_, nullptr), DK_STOPPED);
  options.on_error = AddError;
  seen_ = {};
  EXPECT_EQ(dk_walk(phone_.device(), "/sdcard", &options, AddName, &seen_, nullptr), DK_PARTLY_DONE);
  EXPECT_THAT(seen_.names, ElementsAre("first", "...", "last"));
  EXPECT_EQ(seen_.errors, kFive);
}

TEST_P(UnsafeNames, AreErrorsOfAPullThatGoesOn) {
  const test::TemporaryDirectory directory;
  const std::string target = directory.File("a/target");
  const dk_item items[] = {{"/sdcard", target.c_str()}};
  dk_transfer_options options = DK_TRANSFER_OPTIONS_INIT;
  options.keep_going = true;
  options.on_error = AddError;
  options.user = &seen_;
  dk_summary summary;
  EXPECT_EQ(dk_pull(phone_.device(), items, 1, &options, &summary, nullptr), DK_PARTLY_DONE);
  EXPECT_EQ(seen_.errors, kFive);
  EXPECT_EQ(summary.files_sent, 3U);
  EXPECT_EQ(summary.files_failed, 5U);
  std::vector<std::string> made;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(directory.path()))
    made.push_back(entry.path().native().substr(directory.path().native().size()));
  EXPECT_THAT(made, testing::UnorderedElementsAre("/a", "/a/target", "/a/target/first", "/a/target/...",
                                                  "/a/target/last"));
  EXPECT_EQ(test::ReadFile(target + "/last"), "x");
  EXPECT_FALSE(std::filesystem::exists("/tmp/absolute"));
}

// Whatever is to become of files that are there already.
TEST_P(UnsafeNames, AreErrorsOfAPullWithEachPolicyAndEndOneThatDoesNotGoOn) {
  const test::TemporaryDirectory directory;
  const std::string target = directory.File("target"), other = directory.File("other"),
                    file = directory.File("file");
  const std::string outside = directory.File("escaped");
  const dk_item items[] = {
      {"/sdcard", target.c_str()}, {"/sdcard/DCIM", other.c_str()}, {"/sdcard/Music", file.c_str()}};
  for (const dk_existing existing : {DK_FAIL_IF_EXISTS, DK_REPLACE, DK_SKIP_SAME, DK_SKIP_EXISTING}) {
    SCOPED_TRACE(existing);
    std::filesystem::remove_all(target);
    std::filesystem::create_directory(target);
    for (const std::string& older : {outside, target + "/first"}) test::WriteFile(older, "older");
    seen_ = {};
    dk_transfer_options options = DK_TRANSFER_OPTIONS_INIT;
    options.existing = existing;
    EXPECT_EQ(dk_pull(phone_.device(), items, 1, &options, nullptr, nullptr),
              existing == DK_FAIL_IF_EXISTS ? DK_EXISTS : DK_UNSAFE_NAME);
    options.keep_going = true;
    options.on_error = AddError;
    options.user = &seen_;
    EXPECT_EQ(dk_pull(phone_.device(), items, 3, &options, nullptr, nullptr), DK_PARTLY_DONE);
    EXPECT_EQ(std::count(seen_.errors.begin(), seen_.errors.end(), DK_UNSAFE_NAME), 15);
    EXPECT_EQ(test::ReadFile(outside), "older");
    const bool is_kept = existing == DK_FAIL_IF_EXISTS || existing == DK_SKIP_EXISTING;
    EXPECT_EQ(test::ReadFile(target + "/first"), is_kept ? "older" : "x");
    EXPECT_FALSE(std::filesystem::exists("/tmp/absolute"));
  }
}

// A target is the file itself. The caller may name a folder, but no file is given the name of one.
TEST_P(UnsafeNames, OfTargetsReplaceNoFolder) {
  const test::TemporaryDirectory directory;
  std::filesystem::create_directories(directory.File("a/b"));
  for (const char* name : {"a", "a/", "a/.", "a/b/.."}) {
    for (const dk_existing existing : {DK_FAIL_IF_EXISTS, DK_REPLACE}) {
      const std::string target = directory.File(name);
      const dk_item item = {"/file", target.c_str()};
      dk_transfer_options options = DK_TRANSFER_OPTIONS_INIT;
      options.existing = existing;
      const dk_code code = dk_pull(phone_.device(), &item, 1, &options, nullptr, nullptr);
      EXPECT_TRUE(code == DK_IS_A_DIRECTORY || code == DK_UNSAFE_NAME) << name << ' ' << dk_code_name(code);
    }
  }
  EXPECT_TRUE(std::filesystem::is_empty(directory.File("a/b")));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory.File("a")), {}), 1);
}

}  // namespace
}  // namespace darokleim::client_test
