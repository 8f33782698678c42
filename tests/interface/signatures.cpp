// The types of the functions, which callers in other languages repeat by hand, the numbers of the codes, and the
// version.
#include <darokleim.h>

#include <string_view>
#include <type_traits>

namespace {

template <typename Expected, typename Function>
constexpr bool HasType(Function*) {
  return std::is_same_v<Expected, Function>;
}

static_assert(HasType<int(const char*, const void*, const char*)>(AdbSdkInit));
static_assert(HasType<void(char**)>(AdbFreeResource));

static_assert(HasType<void(const bool*)>(AdbKillDaemon));
static_assert(HasType<int(bool, const bool*)>(AdbStartDaemon));
static_assert(HasType<int(bool, const bool*)>(AdbStartDaemonEx));
static_assert(HasType<int()>(AdbRestartDaemon));
static_assert(HasType<int(const char*, const bool*)>(AdbConfigDeviceBusybox));

static_assert(HasType<int(char*, int, const bool*)>(AdbGetDevices));
static_assert(HasType<int(char**, int*, const bool*)>(AdbGetDevicesEx));
static_assert(HasType<int(const char*, const bool*)>(AdbAuthenticateShow));
static_assert(HasType<int()>(AdbReconnectDevice));
static_assert(HasType<int(const char*, const bool*)>(AdbReboot));

using ReadsText = int(const char*, char*, int, const bool*);
static_assert(HasType<ReadsText>(AdbGetPhoneManufacturer));
static_assert(HasType<ReadsText>(AdbGetPhoneSoftVersion));
static_assert(HasType<ReadsText>(AdbGetPhoneProductModel));
static_assert(HasType<ReadsText>(AdbGetMiuiBuildRegin));
static_assert(HasType<ReadsText>(AdbGetDeviceCurrentTime));
static_assert(HasType<ReadsText>(AdbGetMiuiVersion));

using Asks = int(const char*, bool*, const bool*);
static_assert(HasType<Asks>(AdbCheckLockedState));
static_assert(HasType<Asks>(AdbCheckEncryptState));
static_assert(HasType<Asks>(AdbCheckIsHarmony));
static_assert(HasType<Asks>(IsDeviceHadBeenRooted));
static_assert(HasType<int(const char*, int*, const bool*)>(AdbGetEncryptType));
static_assert(HasType<int(const char*, char**, int*, const bool*)>(AdbGetIPAddress));

static_assert(HasType<int(const char*, const char*, char**, int*, const bool*)>(GetPropInfo));
static_assert(HasType<bool(std::string, std::string&)>(AppendMiuiVersionByTimeCode));

static_assert(ADB_RESULT_OK == 0);
static_assert(ADB_RESULT_PROTOCOL_FAULT == 1);
static_assert(ADB_RESULT_JSON_PARSE_FAILED == 3);
static_assert(ADB_RESULT_INVALID_PARAM == 4);
static_assert(ADB_RESULT_RESOURCE_INCOMPLETE == 6);
static_assert(ADB_RESULT_BUFFER_TOO_SMALL == 8);
static_assert(ADB_RESULT_NO_DEVICE == 24);
static_assert(ADB_RESULT_NO_SUCH_FILE == 25);
static_assert(ADB_RESULT_UNKNOWN_HOST_SERVICE == 26);
static_assert(ADB_RESULT_CANNOT_CONNECT_DAEMON == 27);
static_assert(ADB_RESULT_NOT_FOUND == 28);
static_assert(ADB_RESULT_PERMISSION_DENIED == 29);
static_assert(ADB_RESULT_NO_IP_ADDRESS == 30);
static_assert(ADB_RESULT_FAILURE == 31);
static_assert(ADB_RESULT_INSTALL_ALREADY_EXISTS == 32);
static_assert(ADB_RESULT_INSTALL_FAILURE_99 == 33);
static_assert(ADB_RESULT_INSTALL_VERSION_DOWNGRADE == 34);
static_assert(ADB_RESULT_INSTALL_USER_RESTRICTED == 35);
static_assert(ADB_RESULT_INSTALL_NO_CERTIFICATES == 36);
static_assert(ADB_RESULT_DAEMON_NOT_RUNNING == 37);
static_assert(ADB_RESULT_INSTALL_CANCELED_BY_USER == 38);
static_assert(ADB_RESULT_INSTALL_CANCELLED_BY_USER == 39);
static_assert(ADB_RESULT_NO_CLOSING_QUOTE == 40);
static_assert(ADB_RESULT_SHELL_NOT_FOUND == 41);
static_assert(ADB_RESULT_DEVICE_UNAUTHORIZED == 42);
static_assert(ADB_RESULT_NOT_ENOUGH_SPACE == 43);
static_assert(ADB_RESULT_MIUI_TIME_CODE_FAILED == 44);
static_assert(ADB_RESULT_MIUI_VERSION_NAME_FAILED == 45);
static_assert(ADB_RESULT_USER_ACCESS_DENIED == 46);
static_assert(ADB_RESULT_NO_SPACE_LEFT == 47);

static_assert(ADB_CHANNEL_EXIT_STATUS_BASE == 1000);
static_assert(ADB_CHANNEL_SIGNAL_BASE == 2000);
static_assert(ADB_CHANNEL_NOT_INITIALISED == 3001);
static_assert(ADB_CHANNEL_CANNOT_START_ADB == 3002);
static_assert(ADB_CHANNEL_CANCELLED == 3003);
static_assert(ADB_CHANNEL_OUTPUT_TOO_LONG == 3005);
static_assert(ADB_CHANNEL_SYSTEM_REFUSED == 3006);
static_assert(ADB_CHANNEL_CONNECTION_BROKEN == 3007);

// The version of the build tree, which CMake hands over.
static_assert(std::string_view(DAROKLEIM_VERSION) == DAROKLEIM_PROJECT_VERSION);
static_assert(DAROKLEIM_VERSION_MAJOR == DAROKLEIM_PROJECT_VERSION_MAJOR);
static_assert(DAROKLEIM_VERSION_MINOR == DAROKLEIM_PROJECT_VERSION_MINOR);
static_assert(DAROKLEIM_VERSION_PATCH == DAROKLEIM_PROJECT_VERSION_PATCH);
static_assert(DAROKLEIM_VERSION_NUMBER == 1'000'000 * DAROKLEIM_PROJECT_VERSION_MAJOR +
                                              1'000 * DAROKLEIM_PROJECT_VERSION_MINOR +
                                              DAROKLEIM_PROJECT_VERSION_PATCH);

}  // namespace
