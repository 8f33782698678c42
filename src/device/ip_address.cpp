// AdbGetIPAddress: the address of the device in its Wi-Fi network.
#include "darokleim.h"
#include "src/core/adb_run.h"
#include "src/core/argument_text.h"
#include "src/core/call_log.h"
#include "src/core/handed_out.h"
#include "src/device/ip_output.h"

int AdbGetIPAddress(const char* serial, char** ip, int* ip_len, const bool* cancel) {
  using namespace darokleim::sdk;
  CallLog log("AdbGetIPAddress");
  if (AnyNull(serial)) return log.InvalidParam();
  const AdbRun run(Cut(256, " -s %s shell ip address | grep wlan | grep inet", serial), cancel);
  const int code = run.Classify();
  if (!run.has_output() || code != ADB_RESULT_OK) return log.Leave(code);
  const auto address = FindAddress(run.output());
  if (!address) return log.Leave(ADB_RESULT_NO_IP_ADDRESS);
  *ip_len = static_cast<int>(address->size());
  *ip = NewTerminatedBlock(*address);
  return log.Leave(ADB_RESULT_OK);
}
