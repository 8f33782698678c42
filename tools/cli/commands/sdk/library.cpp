#include "tools/cli/commands/sdk/library.h"

#include <darokleim.h>

#include "tools/cli/errors.h"
#include "tools/cli/host/adb_location.h"
#include "tools/cli/host/resource_directory.h"
#include "tools/cli/output/result_text.h"

namespace darokleim::cli {
namespace {

// The library does not look at it, but it must not be null.
constexpr char kLogContext[] = "darokleim";

}  // namespace

void StartLibrary(const GlobalOptions& options, const std::filesystem::path& log_folder) {
  const auto resources = MakeResourceDirectory(FindHostPrograms(options.adb.text, options.busybox.text));
  const int code = AdbSdkInit(resources.c_str(), kLogContext, log_folder.c_str());
  if (code != ADB_RESULT_OK) throw ToolError("cannot start the library: " + DescribeResult(code));
}

}  // namespace darokleim::cli
