// The words of adb for what a system refuses.
#ifndef DAROKLEIM_CHANNEL_DIRECT_ERROR_TEXT_H
#define DAROKLEIM_CHANNEL_DIRECT_ERROR_TEXT_H

#include <cstdint>
#include <string>

namespace darokleim::channel::direct {

// Of an errno of this host; in English, whatever the host's language.
std::string ErrorText(int error);

// The errno of this host for one of a phone, whose numbers are Linux's; EIO for those that adb does not know.
int ErrorOfPhone(uint32_t error);

}  // namespace darokleim::channel::direct

#endif  // DAROKLEIM_CHANNEL_DIRECT_ERROR_TEXT_H
