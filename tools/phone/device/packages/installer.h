#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_PACKAGES_INSTALLER_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_PACKAGES_INSTALLER_H

#include <string>
#include <vector>

namespace darokleim::phone {

struct InstallOptions {
  bool replace = true;
  bool allow_downgrade = false;
  bool allow_test = false;
};

// Installs the package that these files (a base and its splits) make up. The result is empty, or the failure in
// the package manager's words, such as INSTALL_FAILED_VERSION_DOWNGRADE. The files stay where they are.
std::string Install(const std::vector<std::string>& apks, const InstallOptions& options);

// Likewise for removing, such as DELETE_FAILED_INTERNAL_ERROR.
std::string Uninstall(const std::string& name, bool keep_data);

// Empties the package's data folder; false for an unknown package.
bool ClearData(const std::string& name);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_PACKAGES_INSTALLER_H
