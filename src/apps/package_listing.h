// `pm list packages`, for a user whose packages adb's shell may see.
#ifndef DAROKLEIM_SRC_APPS_PACKAGE_LISTING_H
#define DAROKLEIM_SRC_APPS_PACKAGE_LISTING_H

#include <functional>
#include <string_view>

namespace darokleim::sdk {

// What a listing that comes back without any output leads to.
enum class AfterSilence { kGiveUp, kTryAgain };

// Lists packages, in at most two attempts, and hands the listing to use while the channel still holds it.
// When the device refuses because the shell may not act for the user it means, it is asked for its current
// user, whose packages the second attempt lists. A null filter adds nothing to the command.
//
// Returns the result code of the last command. ADB_RESULT_OK without a call of use: the second attempt was
// refused as well; what the question for the user gave is the result then, and applications rely on it.
int ListPackages(const char* serial, const char* filter, const bool* cancel, AfterSilence after_silence,
                 const std::function<void(std::string_view listing)>& use);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_APPS_PACKAGE_LISTING_H
