#include <darokleim.h>

#include "tests/phone/sdk_on_phone.h"

namespace darokleim::test {

constexpr std::string_view kMode = DAROKLEIM_TEST_MODE;
constexpr bool kAssisted = kMode != "plain";
constexpr bool kDirect = kMode == "direct";

constexpr int kBrokenOff = kDirect ? int{ADB_CHANNEL_CONNECTION_BROKEN} : int{ADB_RESULT_PROTOCOL_FAULT};
constexpr int kCutTransfer = kDirect ? int{ADB_CHANNEL_CONNECTION_BROKEN} : 1001;

}  // namespace darokleim::test
