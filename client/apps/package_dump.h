// What the phone's package manager prints about applications.
#ifndef DAROKLEIM_CLIENT_APPS_PACKAGE_DUMP_H
#define DAROKLEIM_CLIENT_APPS_PACKAGE_DUMP_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace darokleim::client {

// Whether it can be the name of a package: letters, digits, "_" and "." alone, so that no shell sees anything in it.
bool IsPackageName(std::string_view name);

// The lines of `pm list packages -f`, package:PATH=NAME. A path may hold "=", a name cannot. Lines of another form are left out.
std::vector<std::pair<std::string, std::string>> ReadPackageList(std::string_view text);  // name, path

struct PackageFacts {
  std::string version_name;
  std::int64_t version_code = -1;
  bool system = false;
  bool enabled = true;
  std::string code_path;
  std::vector<std::string> splits;  // names, without the base
};
// Of `dumpsys package packages` or of one package: by name, the section of installed packages alone.
std::map<std::string, PackageFacts> ReadPackageDump(std::string_view text);

// What installing and removing end with: "Success", or "Failure [REASON: more]".
struct PackageAnswer {
  bool success = false;
  std::string reason;  // INSTALL_FAILED_…; empty where the phone names none
};
PackageAnswer ReadPackageAnswer(std::string_view text);

// The number in "Success: created install session [12]".
std::optional<std::string> ReadSession(std::string_view text);

}  // namespace darokleim::client

#endif  // DAROKLEIM_CLIENT_APPS_PACKAGE_DUMP_H
