// What each everyday command asks the adb server: docs/performance.md has the number.
#include <gmock/gmock.h>

#include <sstream>

#include "tests/cli/counting_server.h"
#include "tests/cli/phone_tool_test.h"
#include "tests/support/file_content.h"

namespace darokleim::cli {
namespace {

class ServerRequestsTest : public PhoneToolTest {};

struct DocumentedCommand {
  Words words;
  int requests;
};

// The rows of the table, "| `ls /sdcard` | 3 | …".
std::vector<DocumentedCommand> DocumentedCommands() {
  std::vector<DocumentedCommand> commands;
  bool in_section = false;
  for (const std::string& line : test::ReadLines(DAROKLEIM_PERFORMANCE_DOCUMENTATION)) {
    if (line.rfind("## ", 0) == 0) in_section = line == "## Requests to the adb server";
    if (!in_section || line.rfind("| `", 0) != 0) continue;
    const auto begin = line.find('`') + 1, end = line.find('`', begin);
    DocumentedCommand command;
    std::istringstream words(line.substr(begin, end - begin));
    for (std::string word; words >> word;) command.words.push_back(word);
    command.requests = std::atoi(line.c_str() + line.find("| ", end) + 2);
    commands.push_back(command);
  }
  return commands;
}

TEST_P(ServerRequestsTest, AreAsDocumentedAndNoAdbIsStarted) {
  PutOnPhone("/sdcard/Download/a.txt", "x");
  PutOnPhone("/sdcard/Download/folder/b.txt", "x");
  PutOnPhone("/data/local/tmp/e.txt", "x");
  ASSERT_NE(phones().Adb({"install", DAROKLEIM_PHONE_TEST_DATA "/notes-1.apk"}).output.find("Success"),
            std::string::npos);
  test::WriteFile(File("work/b.txt"), "x");
  CountingServer server(phones().port());
  Set("ANDROID_ADB_SERVER_PORT", server.port());
  MakeAdb("echo \"$*\" >>" + File("started"));
  Set("PATH", File("bin") + ":/usr/bin:/bin");
  const auto commands = DocumentedCommands();
  EXPECT_GT(commands.size(), 15u);
  for (const auto& command : commands) {
    const auto outcome = Run(command.words);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    const auto requests = server.TakeRequests();
    EXPECT_EQ(requests.size(), static_cast<std::size_t>(command.requests))
        << testing::PrintToString(command.words) << " asked " << testing::PrintToString(requests);
  }
  EXPECT_EQ(test::ReadFile(File("started")), "");
}

INSTANTIATE_TEST_SUITE_P(, ServerRequestsTest, testing::Values("modern"),
                         [](const auto& phone) { return phone.param; });

}  // namespace
}  // namespace darokleim::cli
