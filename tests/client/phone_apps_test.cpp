// Applications, the log and the storage of phones.
#include <gmock/gmock.h>

#include <condition_variable>
#include <mutex>

#include "tests/client/client_on_phone.h"

namespace darokleim::test {
namespace {

using ::testing::HasSubstr;

std::string Apk(const std::string& name) {
  return std::string(DAROKLEIM_PHONE_TEST_DATA) + "/" + name;
}

class Apps : public ClientOnPhone {
 protected:
  std::string TemporaryFiles() const { return Shell("ls -a /data/local/tmp | grep darokleim"); }
};
DAROKLEIM_ON_BOTH_GENERATIONS(Apps);

TEST_P(Apps, AreInstalledListedAndRemoved) {
  EXPECT_EQ(phone().app(kNotes).code(), DK_NO_PACKAGE);
  ASSERT_TRUE(phone().install({Apk("notes-1.apk")}, DK_INSTALL_OPTIONS_INIT));
  const dk::App notes = phone().app(kNotes).value();
  EXPECT_EQ(notes.package, kNotes);
  EXPECT_EQ(notes.version_name, "1.2.0-beta");
  EXPECT_EQ(notes.version_code, 1);
  EXPECT_FALSE(notes.system);
  EXPECT_TRUE(notes.enabled);
  EXPECT_GT(notes.size, 0U);
  ASSERT_EQ(notes.apk_paths.size(), 1U);

  bool listed = false, system = false;
  for (const dk::App& app : phone().apps().value()) {
    listed = listed || app.package == kNotes;
    system = system || app.system;
  }
  EXPECT_TRUE(listed);
  EXPECT_TRUE(system);
  const auto own = phone().apps(DK_USER_APPS, true).value();
  ASSERT_EQ(own.size(), 1U);
  EXPECT_EQ(own[0].size, notes.size);
  for (const dk::App& app : phone().apps(DK_SYSTEM_APPS).value()) EXPECT_NE(app.package, kNotes);
  EXPECT_EQ(TemporaryFiles(), "");
  EXPECT_TRUE(phone().uninstall(kNotes));
  EXPECT_EQ(phone().uninstall(kNotes).code(), DK_NO_PACKAGE);
}

TEST_P(Apps, OfSeveralFilesAreInstalledAsOne) {
  ASSERT_TRUE(phone().install({Apk("notes-1.apk"), Apk("notes-1-split.apk")}, DK_INSTALL_OPTIONS_INIT));
  EXPECT_EQ(phone().app(kNotes).value().apk_paths.size(), 2U);
  EXPECT_EQ(TemporaryFiles(), "");
}

TEST_P(Apps, SayWhyTheyAreNotInstalled) {
  ASSERT_TRUE(phone().install({Apk("notes-2.apk")}, DK_INSTALL_OPTIONS_INIT));
  const auto older = phone().install({Apk("notes-1.apk")}, DK_INSTALL_OPTIONS_INIT);
  EXPECT_EQ(older.code(), DK_INSTALL_FAILED);
  EXPECT_EQ(older.error().reason(), "INSTALL_FAILED_VERSION_DOWNGRADE");
  const auto future = phone().install({Apk("notes-future.apk")}, DK_INSTALL_OPTIONS_INIT);
  EXPECT_EQ(future.error().reason(), "INSTALL_FAILED_OLDER_SDK");
  EXPECT_THAT(future.error().words(), HasSubstr("INSTALL_FAILED_OLDER_SDK"));
  EXPECT_EQ(phone().install({"/nowhere.apk"}, DK_INSTALL_OPTIONS_INIT).code(), DK_NOT_FOUND);
  EXPECT_EQ(TemporaryFiles(), "");
}

TEST_P(Apps, AreStartedAndStopped) {
  EXPECT_EQ(phone().start(kNotes).code(), DK_NO_PACKAGE);
  ASSERT_TRUE(phone().install({Apk("notes-1.apk")}, DK_INSTALL_OPTIONS_INIT));
  EXPECT_TRUE(phone().start(kNotes));
  EXPECT_THAT(phones().Control({kSerial, "show", "activities"}).output,
              HasSubstr(std::string("start ") + kNotes));
  EXPECT_EQ(phone().start(kNotes, ".NoSuchActivity").code(), DK_COMMAND_FAILED);
  // Only old phones need monkey.
  ASSERT_EQ(phones().Control({kSerial, "fault", "no-monkey"}).status, 0);
  EXPECT_EQ(phone().start(kNotes).ok(), !legacy());
  EXPECT_TRUE(phone().stop(kNotes));
  EXPECT_TRUE(phone().clear(kNotes));
  EXPECT_EQ(phone().stop("not a name; reboot").code(), DK_INVALID_ARGUMENT);
}

TEST_P(Apps, InstallingReportsProgressAndStops) {
  dk_install_options options = DK_INSTALL_OPTIONS_INIT;
  options.on_progress = [](void*, std::uint64_t, std::uint64_t) { return false; };
  EXPECT_EQ(phone().install({Apk("notes-1.apk")}, options).code(), DK_STOPPED);
  EXPECT_EQ(phone().app(kNotes).code(), DK_NO_PACKAGE);
  EXPECT_EQ(TemporaryFiles(), "");
}

TEST_P(Apps, TheLogIsRead) {
  Shell("log -t Camera 'it opens'; log -p e -t Camera 'it fails'");
  std::mutex mutex;
  std::condition_variable changed;
  std::vector<std::string> texts;
  bool ended = false;
  dk_code end_code = DK_STOPPED;
  dk_log_options options = DK_LOG_OPTIONS_INIT;
  const char* const filters[] = {"Camera:E", "*:S"};
  options.filters = filters;
  options.filter_count = 2;
  options.stop_at_end = true;
  dk::Log log =
      phone()
          .log(
              options,
              [&](const dk_log_record& record) {
                const std::lock_guard lock(mutex);
                texts.push_back(std::string(1, record.level) + " " + record.tag + " " + record.text);
              },
              [&](dk_code code, const dk::Error*) {
                const std::lock_guard lock(mutex);
                ended = true;
                end_code = code;
                changed.notify_all();
              })
          .value();
  std::unique_lock lock(mutex);
  ASSERT_TRUE(changed.wait_for(lock, std::chrono::seconds(10), [&] { return ended; }));
  EXPECT_EQ(end_code, DK_OK);
  EXPECT_EQ(texts, std::vector<std::string>{"E Camera it fails"});
}

TEST_P(Apps, OfTheLogTheLastRecordsAreRead) {
  Shell("for text in one two three; do log -t Count $text; done");
  std::vector<std::string> texts;
  std::mutex mutex;
  std::condition_variable changed;
  bool ended = false;
  dk_log_options options = DK_LOG_OPTIONS_INIT;
  const char* const filters[] = {"Count:V", "*:S"};
  options.filters = filters;
  options.filter_count = 2;
  options.stop_at_end = true;
  options.most_old = 2;
  dk::Log log = phone()
                    .log(
                        options, [&](const dk_log_record& record) { texts.emplace_back(record.text); },
                        [&](dk_code, const dk::Error*) {
                          const std::lock_guard lock(mutex);
                          ended = true;
                          changed.notify_all();
                        })
                    .value();
  std::unique_lock lock(mutex);
  ASSERT_TRUE(changed.wait_for(lock, std::chrono::seconds(10), [&] { return ended; }));
  EXPECT_EQ(texts, (std::vector<std::string>{"two", "three"}));
}

TEST_P(Apps, TheLogIsFollowedAndStopped) {
  std::mutex mutex;
  std::condition_variable changed;
  std::vector<std::string> texts;
  dk_log_options options = DK_LOG_OPTIONS_INIT;
  options.only_new = true;
  dk::Log log = phone()
                    .log(options,
                         [&](const dk_log_record& record) {
                           const std::lock_guard lock(mutex);
                           texts.emplace_back(record.text);
                           changed.notify_all();
                         })
                    .value();
  Shell("log -t Test 'a new line'");
  {
    std::unique_lock lock(mutex);
    EXPECT_TRUE(changed.wait_for(lock, std::chrono::seconds(10), [&] {
      return std::find(texts.begin(), texts.end(), "a new line") != texts.end();
    }));
  }
  log.stop();
  const auto count = texts.size();
  Shell("log -t Test 'after the end'");
  EXPECT_EQ(texts.size(), count);
}

TEST_P(Apps, VolumesHaveTotals) {
  Start({std::string(kSerial) + ",card=1234-5678,android=" + GetParam()});
  const auto volumes = phone().volumes().value();
  ASSERT_EQ(volumes.size(), 2U);
  for (const dk::Volume& volume : volumes) {
    EXPECT_EQ(volume.internal, volume.path == "/storage/emulated/0") << volume.path;
    EXPECT_GT(volume.total, 0U);
    EXPECT_GE(volume.total, volume.free);
  }
}

}  // namespace
}  // namespace darokleim::test
