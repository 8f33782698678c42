#include "tests/cli/tool_run.h"

#include <sys/stat.h>

#include <filesystem>

#include "tests/support/file_content.h"

namespace darokleim::cli {

ToolTest::ToolTest() {
  for (const char* folder : {"home", "bin", "tmp"}) std::filesystem::create_directory(File(folder));
  environment_ = {
      {"HOME", File("home")}, {"PATH", File("bin")}, {"TMPDIR", File("tmp")}, {"TOOL", DAROKLEIM_TOOL}};
  for (const char* variable : {"XDG_CACHE_HOME", "XDG_STATE_HOME", "ANDROID_HOME", "ANDROID_SDK_ROOT",
                               "ANDROID_SERIAL", "DAROKLEIM_CHANNEL_ASSIST", "DAROKLEIM_LOG_LEVEL"}) {
    Set(variable, "");
  }
}

void ToolTest::MakeAdb(const std::string& body) const {
  MakeExecutable(File("bin/adb"), "#!/bin/sh\n" + body);
}

void ToolTest::MakeExecutable(const std::string& path, const std::string& content) const {
  test::WriteFile(path, content);
  ASSERT_EQ(chmod(path.c_str(), 0755), 0);
}

void ToolTest::Set(const std::string& variable, const std::string& value) {
  for (auto& [name, old_value] : environment_) {
    if (name == variable) {
      old_value = value;
      return;
    }
  }
  environment_.emplace_back(variable, value);
}

Outcome ToolTest::Run(const Words& arguments) const {
  return Start(arguments)->Finish();
}

std::unique_ptr<HostProcess> ToolTest::Start(const Words& arguments) const {
  return std::make_unique<HostProcess>(Command(arguments), environment_);
}

Outcome ToolTest::OnTerminal(const Words& arguments) const {
  return RunOnTerminal(Command(arguments), environment_);
}

Words ToolTest::Command(const Words& arguments) const {
  Words command = {DAROKLEIM_TOOL};
  if (!folder_.empty()) command = {"/bin/sh", "-c", "cd -- \"$0\" && exec \"$@\"", folder_, DAROKLEIM_TOOL};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return command;
}

Outcome ToolTest::RunProgram(Words command, const Words& arguments) const {
  command.insert(command.end(), arguments.begin(), arguments.end());
  return test::RunProgram(command, environment_);
}

Outcome ToolTest::RunShell(const std::string& line) const {
  return RunProgram({"/bin/sh", "-c"}, {line});
}

}  // namespace darokleim::cli
