#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_PROGRAMS_PROGRAMS_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_PROGRAMS_PROGRAMS_H

#include <string>
#include <vector>

namespace darokleim::phone {

using Words = std::vector<std::string>;

// A command of the phone that is ours: it answers from the phone's state where a real one asks the services of
// Android. `words` are those after the command's name; the result is the exit status.
using Program = int (*)(const Words& words);

// Null for another name.
Program FindProgram(const std::string& name);
std::vector<std::string> ProgramNames();
// True for those that were toolbox's until Android 6 and are toybox's since.
bool IsToolboxProgram(const std::string& name);

int RunAm(const Words& words);
int RunBu(const Words& words);
int RunCmd(const Words& words);
int RunDd(const Words& words);
int RunDf(const Words& words);
int RunDumpsys(const Words& words);
int RunGetprop(const Words& words);
int RunInput(const Words& words);
int RunIp(const Words& words);
int RunLog(const Words& words);
int RunLogcat(const Words& words);
int RunLs(const Words& words);
int RunMonkey(const Words& words);
int RunPm(const Words& words);
int RunReboot(const Words& words);
int RunScreencap(const Words& words);
int RunSetprop(const Words& words);
int RunSettings(const Words& words);
int RunSu(const Words& words);
int RunWm(const Words& words);

// The commands of /system/bin that are toybox on a phone. Those that a phone has under the same name but that
// answer from the phone's own services (getprop, logcat …) are not among them.
const std::vector<std::string>& ToyboxCommands();

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_PROGRAMS_PROGRAMS_H
