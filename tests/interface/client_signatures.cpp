// What programs in other languages repeat by hand: the numbers of the enumerations, the layout of the structures, the
// version. A change here breaks programs that were built before.
#include <darokleim/client.h>

#include <string_view>
#include <type_traits>

namespace {

static_assert(DK_OK == 0 && DK_CANCELLED == 1 && DK_TIMED_OUT == 2 && DK_STOPPED == 3);
static_assert(DK_INVALID_ARGUMENT == 4 && DK_OUT_OF_MEMORY == 5 && DK_SYSTEM_REFUSED == 6);
static_assert(DK_NO_SERVER == 10 && DK_SERVER_PROTOCOL == 11 && DK_SERVER_REFUSED == 12 &&
              DK_NO_DEVICE == 13);
static_assert(DK_SEVERAL_DEVICES == 14 && DK_DEVICE_OFFLINE == 15 && DK_DEVICE_UNAUTHORIZED == 16);
static_assert(DK_DEVICE_NO_PERMISSIONS == 17 && DK_CONNECTION_LOST == 18);
static_assert(DK_NOT_FOUND == 20 && DK_ACCESS_DENIED == 21 && DK_NOT_A_DIRECTORY == 22 &&
              DK_IS_A_DIRECTORY == 23);
static_assert(DK_EXISTS == 24 && DK_NOT_EMPTY == 25 && DK_NO_SPACE == 26 && DK_READ_ONLY == 27 &&
              DK_LINK_LOOP == 28);
static_assert(DK_NAME_TOO_LONG == 29 && DK_UNSAFE_NAME == 30 && DK_FILE_ERROR == 31 && DK_CHANGED == 32);
static_assert(DK_COMMAND_FAILED == 40 && DK_INSTALL_FAILED == 41 && DK_NO_PACKAGE == 42);
static_assert(DK_ANSWER_UNREADABLE == 43 && DK_UNSUPPORTED == 44);
static_assert(DK_ADDRESS_IN_USE == 50 && DK_PARTLY_DONE == 60);

static_assert(DK_STATE_UNKNOWN == 0 && DK_STATE_READY == 1 && DK_STATE_OFFLINE == 2 &&
              DK_STATE_UNAUTHORIZED == 3);
static_assert(DK_STATE_AUTHORIZING == 4 && DK_STATE_CONNECTING == 5 && DK_STATE_NO_PERMISSIONS == 6);
static_assert(DK_STATE_BOOTLOADER == 7 && DK_STATE_RECOVERY == 8 && DK_STATE_RESCUE == 9 &&
              DK_STATE_SIDELOAD == 10);
static_assert(DK_STATE_DETACHED == 11 && DK_STATE_HOST == 12);
static_assert(DK_LINK_UNKNOWN == 0 && DK_LINK_USB == 1 && DK_LINK_NETWORK == 2 && DK_LINK_EMULATOR == 3);
static_assert(DK_DEVICE_ADDED == 1 && DK_DEVICE_CHANGED == 2 && DK_DEVICE_REMOVED == 3);
static_assert(DK_SERVER_LOST == 4 && DK_SERVER_FOUND == 5);
static_assert(DK_UNKNOWN_TYPE == 0 && DK_FILE == 1 && DK_DIRECTORY == 2 && DK_LINK == 3 && DK_SPECIAL == 4);
static_assert(DK_NO_FOLLOW == 0 && DK_FOLLOW == 1);
static_assert(DK_FAIL_IF_EXISTS == 0 && DK_REPLACE == 1 && DK_SKIP_SAME == 2 && DK_SKIP_EXISTING == 3);
static_assert(DK_STDOUT == 1 && DK_STDERR == 2);
static_assert(DK_ALL_APPS == 0 && DK_USER_APPS == 1 && DK_SYSTEM_APPS == 2);

// Members may be added at the end; what is there stays where it is.
static_assert(sizeof(void*) != 8 || (offsetof(dk_call, cancel) == 8 && offsetof(dk_call, timeout_ms) == 16 &&
                                     offsetof(dk_call, error) == 24 && sizeof(dk_call) >= 32));
static_assert(offsetof(dk_bytes, data) == 0 && offsetof(dk_bytes, size) == sizeof(void*));
static_assert(sizeof(void*) != 8 ||
              (offsetof(dk_context_options, server) == 8 && offsetof(dk_context_options, adb_path) == 16 &&
               offsetof(dk_context_options, log) == 24 && offsetof(dk_context_options, log_user) == 32));
static_assert(sizeof(void*) != 8 ||
              (offsetof(dk_device_info, state) == 8 && offsetof(dk_device_info, state_text) == 16 &&
               offsetof(dk_device_info, link) == 24 && offsetof(dk_device_info, product) == 32 &&
               offsetof(dk_device_info, transport_id) == 64));
static_assert(sizeof(void*) != 8 ||
              (offsetof(dk_entry, type) == 16 && offsetof(dk_entry, mode) == 20 &&
               offsetof(dk_entry, size) == 24 && offsetof(dk_entry, size_known) == 32 &&
               offsetof(dk_entry, mtime) == 40 && offsetof(dk_entry, has_owner) == 48 &&
               offsetof(dk_entry, uid) == 52 && offsetof(dk_entry, device) == 64 &&
               offsetof(dk_entry, inode) == 72 && offsetof(dk_entry, link_target) == 80));
static_assert(sizeof(void*) != 8 || (offsetof(dk_transfer_options, existing) == 8 &&
                                     offsetof(dk_transfer_options, keep_going) == 12 &&
                                     offsetof(dk_transfer_options, on_progress) == 16 &&
                                     offsetof(dk_transfer_options, user) == 32));
static_assert(offsetof(dk_progress, file_done) == sizeof(void*) && offsetof(dk_summary, bytes_sent) == 24);
static_assert(sizeof(void*) != 8 ||
              (offsetof(dk_output, err) == 16 && offsetof(dk_output, cut) == 32 &&
               offsetof(dk_output, exit_status) == 36 && offsetof(dk_run_options, most_collected) == 40));
static_assert(sizeof(void*) != 8 || (offsetof(dk_app, version_code) == 16 && offsetof(dk_app, system) == 24 &&
                                     offsetof(dk_app, size) == 32 && offsetof(dk_app, apk_count) == 48));
static_assert(offsetof(dk_log_record, nanoseconds) == 8 && offsetof(dk_log_record, process) == 16 &&
              offsetof(dk_log_record, tag) == 24);

// What callbacks of other languages are declared as.
static_assert(std::is_same_v<dk_on_device, bool (*)(void*, const dk_device_info*)>);
static_assert(std::is_same_v<dk_on_change, void (*)(void*, dk_change, const dk_device_info*)>);
static_assert(std::is_same_v<dk_on_entry, bool (*)(void*, const dk_entry*)>);
static_assert(std::is_same_v<dk_on_bytes, bool (*)(void*, const char*, std::size_t)>);
static_assert(std::is_same_v<dk_source, std::int64_t (*)(void*, char*, std::size_t)>);

// The version of the build tree, which CMake hands over.
static_assert(std::string_view(DK_VERSION) == DAROKLEIM_PROJECT_VERSION);
static_assert(DK_VERSION_MAJOR == DAROKLEIM_PROJECT_VERSION_MAJOR);
static_assert(DK_VERSION_MINOR == DAROKLEIM_PROJECT_VERSION_MINOR);
static_assert(DK_VERSION_PATCH == DAROKLEIM_PROJECT_VERSION_PATCH);
static_assert(DK_VERSION_NUMBER == 1'000'000 * DAROKLEIM_PROJECT_VERSION_MAJOR +
                                       1'000 * DAROKLEIM_PROJECT_VERSION_MINOR +
                                       DAROKLEIM_PROJECT_VERSION_PATCH);

}  // namespace
