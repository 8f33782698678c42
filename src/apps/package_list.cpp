// AdbCheckAppInstalled, AdbGetPackagesNameOfInstalled, AdbGetPackagesNameList: which packages a device has.
#include <string_view>

#include "darokleim.h"
#include "src/apps/package_listing.h"
#include "src/apps/package_output.h"
#include "src/core/call_log.h"
#include "src/core/handed_out.h"
#include "src/core/text.h"
#include "src/platform/log_library.h"

namespace darokleim::sdk {
namespace {

// The device lists every package whose name holds the one asked for. Each other one leaves a line in the log.
bool Lists(std::string_view listing, const char* package, const CallLog& log) {
  bool found = false;
  ForEachPiece(listing, "\n", [&](std::string_view line) {
    const auto listed = MatchPackageLine(line);
    if (!listed) return true;
    found = *listed == package;
    LogEx(kLogModule, kLogInfo, found ? "%s  %s is installed." : "%s  %s is not installed.", log.function(),
          package);
    return !found;
  });
  return found;
}

// Hands out the listing as the device printed it, line ends and all.
int HandOutListing(const char* serial, const char* filter, char** list, int* list_len, const bool* cancel) {
  return ListPackages(serial, filter, cancel, AfterSilence::kGiveUp, [&](std::string_view listing) {
    *list_len = static_cast<int>(listing.size());
    *list = NewBlock(listing);
  });
}

}  // namespace
}  // namespace darokleim::sdk

int AdbCheckAppInstalled(const char* serial, const char* package, bool* installed, const bool* cancel) {
  using namespace darokleim::sdk;
  CallLog log("AdbCheckAppInstalled");
  if (AnyNull(serial, package, installed)) return log.InvalidParam();
  *installed = false;
  return log.Leave(
      ListPackages(serial, package, cancel, AfterSilence::kTryAgain,
                   [&](std::string_view listing) { *installed = Lists(listing, package, log); }));
}

int AdbGetPackagesNameOfInstalled(const char* serial, const char* filter, char** list, int* list_len,
                                  const bool* cancel) {
  using namespace darokleim::sdk;
  CallLog log("AdbGetPackagesNameOfInstalled");
  if (AnyNull(serial, filter)) return log.InvalidParam();
  return log.Leave(HandOutListing(serial, filter, list, list_len, cancel));
}

int AdbGetPackagesNameList(const char* serial, const char* filter, char** list, int* list_len) {
  using namespace darokleim::sdk;
  CallLog log("AdbGetPackagesNameList");
  if (AnyNull(serial)) return log.InvalidParam();
  const bool never_cancelled = false;
  return log.Leave(HandOutListing(serial, filter, list, list_len, &never_cancelled));
}
