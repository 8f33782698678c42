#include "tools/phone/device/programs/programs.h"

#include <map>

namespace darokleim::phone {

namespace {

const std::map<std::string, Program>& Programs() {
  static const std::map<std::string, Program> programs = {
      {"am", RunAm},           {"bu", RunBu},
      {"cmd", RunCmd},         {"df", RunDf},
      {"dumpsys", RunDumpsys}, {"getprop", RunGetprop},
      {"input", RunInput},     {"ip", RunIp},
      {"log", RunLog},         {"logcat", RunLogcat},
      {"ls", RunLs},           {"pm", RunPm},
      {"reboot", RunReboot},   {"screencap", RunScreencap},
      {"setprop", RunSetprop}, {"settings", RunSettings},
      {"su", RunSu},           {"wm", RunWm},
  };
  return programs;
}

}  // namespace

Program FindProgram(const std::string& name) {
  const auto found = Programs().find(name);
  return found == Programs().end() ? nullptr : found->second;
}

std::vector<std::string> ProgramNames() {
  std::vector<std::string> names;
  for (const auto& program : Programs()) names.push_back(program.first);
  return names;
}

bool IsToolboxProgram(const std::string& name) {
  return name == "df" || name == "ls";
}

}  // namespace darokleim::phone
