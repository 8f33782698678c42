// What client.hpp adds to the C interface: callbacks that hold things and may throw, results, objects that end.
#include <gmock/gmock.h>

#include <atomic>
#include <functional>
#include <stdexcept>

#include "tests/client/client_on_phone.h"
#include "tests/support/eventually.h"
#include "tests/support/file_content.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::test {
namespace {

class Wrapper : public ClientOnPhone {
 protected:
  TemporaryDirectory directory_;
};
DAROKLEIM_ON_BOTH_GENERATIONS(Wrapper);

TEST_P(Wrapper, TransfersWithCallbacksThatHoldThings) {
  WriteFile(directory_.File("a"), "first");
  WriteFile(directory_.File("b"), "second");
  ASSERT_TRUE(phone().make_folder("/sdcard/t/b", true));  // in the way
  dk_summary summary = {};
  std::vector<std::string> paths;
  std::uint64_t done = 0, total = 0;
  dk::TransferOptions options;
  options.keep_going = true;
  options.summary = &summary;
  options.on_error = [&](const dk::Error& error) {
    paths.push_back(error.path());
    return true;
  };
  options.on_progress = [&](const dk_progress& progress) {
    done = progress.files_done;
    total = progress.files_total;
    return true;
  };
  const auto sent =
      phone().push({{directory_.File("a"), "/sdcard/t/a"}, {directory_.File("b"), "/sdcard/t/b"}}, options);
  EXPECT_EQ(sent.code(), DK_PARTLY_DONE);
  EXPECT_EQ(summary.files_sent, 1U);
  EXPECT_EQ(summary.files_failed, 1U);
  EXPECT_THAT(paths, testing::ElementsAre("/sdcard/t/b"));
  EXPECT_EQ(done, 1U);
  EXPECT_EQ(total, 2U);

  options.on_progress = [](const dk_progress&) -> bool { throw std::runtime_error("full"); };
  EXPECT_THROW(static_cast<void>(phone().push({{directory_.File("a"), "/sdcard/t/c"}}, options)),
               std::runtime_error);
  EXPECT_EQ(phone().stat("/sdcard/t/c").code(), DK_NOT_FOUND);
}

TEST_P(Wrapper, WalksWithFiltersAndErrors) {
  Shell("mkdir -p /sdcard/w/closed && echo 1 >/sdcard/w/a.JPG && echo 2 >/sdcard/w/b.txt");
  dk::WalkOptions options;
  options.suffixes = {"jpg"};
  options.on_error = [](const dk::Error&) { return true; };
  std::vector<std::string> names;
  ASSERT_TRUE(
      phone().walk("/sdcard/w", options, [&](const dk_entry& entry) { names.push_back(entry.name); }));
  EXPECT_THAT(names, testing::ElementsAre("a.JPG"));
  EXPECT_THROW(static_cast<void>(phone().walk("/sdcard/w", options,
                                              [](const dk_entry&) { throw std::runtime_error("x"); })),
               std::runtime_error);
}

TEST_P(Wrapper, ReadsAndWritesInPieces) {
  const std::string content(200000, 'x');
  std::size_t given = 0;
  ASSERT_TRUE(phone().write_from("/sdcard/pieces", [&](char* buffer, std::size_t capacity) {
    const std::size_t count = content.copy(buffer, capacity, given);
    given += count;
    return static_cast<std::int64_t>(count);
  }));
  std::string read;
  ASSERT_TRUE(phone().read("/sdcard/pieces", 0, 0, [&](std::string_view data) { read += data; }));
  EXPECT_EQ(read, content);
  const auto throwing = [](char*, std::size_t) -> std::int64_t { throw std::runtime_error("no more"); };
  EXPECT_THROW(static_cast<void>(phone().write_from("/sdcard/none", throwing)), std::runtime_error);
  EXPECT_EQ(phone().stat("/sdcard/none").code(), DK_NOT_FOUND);
}

TEST_P(Wrapper, RunsCommandsWithInputAndPieces) {
  std::string said;
  dk::RunOptions options;
  options.on_output = [&](dk_stream, std::string_view data) {
    said += data;
    return true;
  };
  const auto ran = phone().run_script("echo one; echo two", options);
  ASSERT_TRUE(ran);
  EXPECT_EQ(said, "one\ntwo\n");
  dk::RunOptions input;
  input.input = "typed";
  const auto fed = phone().run({"cat"}, input);
  if (legacy()) {
    EXPECT_EQ(fed.code(), DK_UNSUPPORTED);
  } else {
    ASSERT_TRUE(fed);
    EXPECT_EQ(phone().run({"cat"}, input).value().out, "typed");
  }
  EXPECT_EQ(phone().run_script("echo " + dk::quote("it's $HOME")).value().out, "it's $HOME\n");
}

TEST_P(Wrapper, ListsMappings) {
  const int port = phone().forward("tcp:0", "tcp:7000").value();
  const auto forwards = phone().forwards().value();
  ASSERT_EQ(forwards.size(), 1U);
  EXPECT_EQ(forwards[0].from, "tcp:" + std::to_string(port));
  EXPECT_EQ(forwards[0].to, "tcp:7000");
  ASSERT_TRUE(phone().reverse("tcp:7001", "tcp:7002"));
  const auto reverses = phone().reverses().value();
  ASSERT_EQ(reverses.size(), 1U);
  EXPECT_EQ(reverses[0].from, "tcp:7001");
  EXPECT_TRUE(phone().remove_reverse(""));
  EXPECT_TRUE(phone().swipe(1, 2, 3, 4, std::chrono::milliseconds(10)));
}

TEST_P(Wrapper, AWatchThatIsAssignedToStopsFirst) {
  std::atomic<int> first{0}, second{0};
  dk::Watch watch = client().watch([&](dk_change, const dk::DeviceInfo*) { ++first; }).value();
  EXPECT_TRUE(Eventually([&] { return first > 1; }));
  watch = client().watch([&](dk_change, const dk::DeviceInfo*) { ++second; }).value();
  EXPECT_TRUE(Eventually([&] { return second > 1; }));
  const int before = first;
  EXPECT_TRUE(Eventually([&] { return second > 1; })) << "the server and the phone";
  phones().Control({kSerial, "unplug"});
  EXPECT_TRUE(Eventually([&] { return second > 2; }));
  EXPECT_EQ(first, before);
  watch.stop();
}

TEST_P(Wrapper, HandlesKeepWhatTheyNeed) {
  std::atomic<int> records{0}, changes{0}, lines{0};
  std::function<std::string()> ask;
  dk::Log log;
  dk::Watch watch;
  {
    dk::ClientOptions options;
    options.server = "tcp:" + phones().port();
    options.log = [&](std::string_view) { ++lines; };
    const dk::Client passing(options);
    const dk::Device phone = passing.open(kSerial).value();
    ask = [phone] { return phone.run({"echo", "there"}).value().out; };
    log = phone.log(dk::LogOptions(), [&](const dk_log_record&) { ++records; }).value();
    watch = dk::Client(passing).watch([&](dk_change, const dk::DeviceInfo*) { ++changes; }).value();
  }
  const int before = lines;
  EXPECT_EQ(ask(), "there\n");
  EXPECT_GT(lines, before);
  ask = nullptr;
  Shell("log -t wrapper 'a record'");
  EXPECT_TRUE(Eventually([&] { return records > 0 && changes > 0; }));
}

TEST_P(Wrapper, AClientsLogHasItsRequests) {
  std::atomic<int> lines{0};
  dk::ClientOptions options;
  options.server = "tcp:" + phones().port();
  options.log = [&](std::string_view line) { lines += line.empty() ? 0 : 1; };
  dk::Client one(options);
  dk::Client other = std::move(one);
  EXPECT_TRUE(other.open(kSerial).value().run({"true"}));
  EXPECT_GT(lines, 0);
  EXPECT_EQ(dk::version(), DK_VERSION);
}

}  // namespace
}  // namespace darokleim::test
