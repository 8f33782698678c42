#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include "tools/phone/device/daemon.h"
#include "tools/phone/device/layout.h"
#include "tools/phone/device/programs/programs.h"
#include "tools/phone/server/control.h"
#include "tools/phone/server/server.h"

namespace {

using namespace darokleim::phone;

constexpr char kPhoneHelp[] =
    "a phone: SERIAL[,key=value]…, where\n"
    "state=device|offline|unauthorized|authorizing|connecting|no-permissions|recovery|sideload\n"
    "android=modern|legacy: as Android 13, or as Android 6\n"
    "profile=plain|samsung|miui12|miui125|miui13|harmony: the maker and system in its properties\n"
    "prop.NAME=VALUE: a property of its own; may be repeated\n"
    "encryption=file|block|none, su=bin|xbin: a file /system/bin/su or /system/xbin/su\n"
    "tools=toolbox|toybox: whose ls and df it has (default: toolbox's on a legacy phone)\n"
    "storage=emulated|sdcard0|sdcard1: the internal storage is /storage/emulated/0, /storage/sdcard0 or "
    "/sdcard1\n"
    "group=sdcard_rw|sdcard_r|media_rw|everybody: owns the volumes under /storage\n"
    "root=FOLDER: keeps its files there (default: a temporary folder)\n"
    "card=NAME: an SD card /storage/NAME; may be repeated\n"
    "fault=NAME[=VALUE]: has this fault from the start (see ctl --help); may be repeated";

constexpr int kWrongUsage = 2;
constexpr char kPortVariable[] = "ANDROID_ADB_SERVER_PORT";

int Serve(int argc, char** argv) {
  CLI::App app("Simulated Android phones: an adb server with phones attached, for testing without hardware.",
               "darokleim-phone");
  ServerOptions options;
  std::vector<std::string> phones;
  app.set_version_flag("--version", DAROKLEIM_VERSION);
  app.add_option("--port", options.port, "the server's TCP port; 0: a free one")
      ->capture_default_str()
      ->envname(kPortVariable);
  app.add_option("--phone", phones, kPhoneHelp)->allow_extra_args(false);
  std::string release = "29";
  app.add_option("--server-release", release,
                 "the release of adb whose server this is; they differ in features")
      ->check(CLI::IsMember({"29", "34"}))
      ->capture_default_str();
  bool quick = false;
  app.add_flag(
      "--quick", quick,
      "send every reply at once; a real server keeps a client that waits for each reply waiting for up to "
      "40 ms");
  app.add_flag("--restart-on-kill", options.restart_on_kill,
               "adb kill-server ends every connection; then the server is there again, with its phones");
  CLI::App* control =
      app.add_subcommand("ctl", "Changes a phone of the running server on this port.\n" + ControlHelp());
  uint16_t control_port = options.port;
  std::vector<std::string> control_words;
  control->add_option("--port", control_port, "the running server's port")
      ->capture_default_str()
      ->envname(kPortVariable);
  control->add_option("WORD", control_words, "what to do")->required()->type_name("");
  try {
    app.parse(argc, argv);
    if (release == "34") options.release = ServerRelease::kAdb34;
    if (quick) options.small_packets = SmallPackets::kGoAtOnce;
    for (const std::string& phone : phones) options.phones.push_back(ParsePhoneOptions(phone));
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kWrongUsage;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "darokleim-phone: --phone: %s\n", error.what());
    return kWrongUsage;
  }
  return control->parsed() ? RunControl(control_port, control_words) : RunServer(options);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const std::string name = std::filesystem::path(argv[0]).filename().string();
    const bool on_a_phone = access(kStateFolder, F_OK) == 0;
    if (const Program program = on_a_phone ? FindProgram(name) : nullptr)
      return program(Words(argv + 1, argv + argc));
    // The phone's first process is this program too, started in the sandbox.
    if (argc == 3 && std::strcmp(argv[1], "--daemon") == 0)
      return RunDaemon(std::strcmp(argv[2], "legacy") == 0);
    return Serve(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "darokleim-phone: %s\n", error.what());
    return 1;
  }
}
