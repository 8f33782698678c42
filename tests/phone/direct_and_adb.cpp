#include "tests/phone/direct_and_adb.h"

#include <stdlib.h>
#include <sys/stat.h>

#include <algorithm>
#include <ctime>
#include <regex>
#include <sstream>
#include <vector>

#include "src/platform/command_channel.h"
#include "tests/support/adb_version.h"
#include "tests/support/eventually.h"
#include "tests/support/file_content.h"

namespace darokleim::test {

namespace fs = std::filesystem;

const std::vector<std::string> kAwkwardNames = {
    "my photo.jpg", "it's",        "a\"b",      "$HOME", "a&b;c|d", "(1) *.txt", "-n",
    "trailing ",    "back\\slash", "new\nline", "相机",  "%s%n",    "#",         "~"};

namespace {

std::string PathOfAdb() {
  const std::string path = RunProgram({"sh", "-c", "command -v adb"}).output;
  return path.substr(0, path.find('\n'));
}

// What was sent of a file that the phone refuses depends on when the refusal arrives.
std::string WithoutMeasurements(const std::string& text) {
  static const std::regex kRate(R"( \d+\.\d MB/s \((\d+) bytes in \d+\.\d{3}s\))");
  static const std::regex kRateOfNothing(R"((: 0 files .* R MB/s \()\d+)");
  return std::regex_replace(std::regex_replace(text, kRate, " R MB/s ($1 bytes in T)"), kRateOfNothing,
                            "$1N");
}

// One line for each file: what adb could have made different. Times of the test itself are all alike.
std::string Describe(const fs::path& root) {
  std::vector<std::string> lines;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root)) {
    struct stat status;
    if (lstat(entry.path().c_str(), &status) != 0) continue;
    const bool old = status.st_mtime < std::time(nullptr) - 24 * 60 * 60;
    std::ostringstream line;
    line << entry.path().native().substr(root.native().size()) << ' ' << std::oct << status.st_mode
         << std::dec << ' ' << (S_ISDIR(status.st_mode) || !old ? 0 : status.st_mtime);
    if (S_ISREG(status.st_mode)) line << ' ' << std::hash<std::string>()(ReadFile(entry.path()));
    lines.push_back(line.str());
  }
  std::sort(lines.begin(), lines.end());
  std::string text;
  for (const std::string& line : lines) text += line + '\n';
  return text;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Answer& answer) {
  return out << "status " << answer.status << (answer.handed_out ? ", " : ", no buffer, ")
             << testing::PrintToString(answer.text);
}

void DirectAndAdb::SetUp() {
  const std::string android = ",android=" + GetParam();
  phones_ = std::make_unique<SimulatedPhones>(
      Words{"HEALTHY,card=1A2B-3C4D" + android, "OFFLINE,state=offline" + android,
            "LOCKED,state=unauthorized" + android, "ASKING,state=authorizing" + android});
  setenv("ANDROID_ADB_SERVER_PORT", phones_->port().c_str(), 1);
  adb_ = PathOfAdb();
  phone_files_ = phones_->FilesOf(serial());
  Reset();
}

void DirectAndAdb::TearDown() {
  unsetenv("DAROKLEIM_CHANNEL");
}

void DirectAndAdb::Reset() {
  for (const fs::path& folder : {host_folder(), phone_folder_seen()}) {
    fs::remove_all(folder);
    fs::create_directories(folder);
  }
}

void DirectAndAdb::Control(const Words& words) const {
  Words all = {serial()};
  all.insert(all.end(), words.begin(), words.end());
  const Outcome outcome = phones_->Control(all);
  ASSERT_EQ(outcome.status, 0) << outcome.errors;
}

std::string DirectAndAdb::Effect() const {
  return "host:\n" + Describe(host_folder()) + "phone:\n" + Describe(phone_folder_seen());
}

Answer DirectAndAdb::Run(const char* mode, const std::string& adb, const std::string& args,
                         const bool* cancel) {
  setenv("DAROKLEIM_CHANNEL", mode, 1);
  EXPECT_EQ(InitAdbCommuncation2Server(adb.c_str(), nullptr, nullptr), 0);
  char* out = nullptr;
  int length = 0;
  Answer answer;
  answer.status = ExecuteAdbCommandSynchronization(args.c_str(), cancel, &out, &length);
  answer.handed_out = out != nullptr;
  if (out != nullptr) {
    // Without adb the channel says what adb 29 says.
    answer.text = WithoutMeasurements(InTheWordsOfAdb29(std::string(out, static_cast<size_t>(length))));
  }
  ReleaseAdbOutBuffer(out);
  return answer;
}

Answer DirectAndAdb::ThroughAdb(const std::string& args) {
  return Run("assist", adb_, args);
}

Answer DirectAndAdb::Directly(const std::string& args, const bool* cancel) {
  return Run("direct", (folder_.path() / "no-adb").native(), args, cancel);
}

Answer DirectAndAdb::DirectlyOrThroughAdb(const std::string& args) {
  return Run("direct", adb_, args);
}

Answer DirectAndAdb::ExpectSameAnswer(const std::string& args) {
  const Answer expected = ThroughAdb(args);
  EXPECT_EQ(Directly(args), expected) << args.substr(0, 200);
  return expected;
}

Answer DirectAndAdb::ExpectSameEffect(const std::string& args, const Look& look) {
  Reset();
  const Answer expected = ThroughAdb(args);
  const std::string effect = Effect() + (look ? look() : "");
  Reset();
  EXPECT_EQ(Directly(args), expected) << args.substr(0, 200);
  EXPECT_EQ(Effect() + (look ? look() : ""), effect) << args.substr(0, 200);
  return expected;
}

void DirectAndAdb::ExpectLeftToAdb(const std::string& args) {
  EXPECT_EQ(Directly(args).status, 3002) << args.substr(0, 200);
  Reset();
  const Answer expected = ThroughAdb(args);
  const std::string effect = Effect();
  Reset();
  EXPECT_EQ(DirectlyOrThroughAdb(args), expected) << args.substr(0, 200);
  EXPECT_EQ(Effect(), effect) << args.substr(0, 200);
}

}  // namespace darokleim::test
