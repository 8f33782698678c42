/// @file
/// @brief The client for C++17: values, objects that free themselves, errors as exceptions or as results.
///
/// Header only, over darokleim/client.h, which says what each call does on the device and which codes to expect. Every
/// call returns a dk::Result: take its value with `.value()`, which throws a dk::Error when there is none, or look at it
/// first, and nothing is thrown.
///
/// @code{.cpp}
/// #include <darokleim/client.hpp>
/// #include <iostream>
///
/// int main() {
///   dk::Client client;
///   dk::Device phone = client.open().value();  // the only one that is ready
///
///   for (const dk::Entry& entry : phone.list("/sdcard/DCIM").value()) std::cout << entry.name << '\n';
///
///   if (auto made = phone.make_folder("/sdcard/Backup"); !made) {
///     std::cerr << made.error().message() << '\n';
///     return 1;
///   }
/// }
/// @endcode
///
/// **Limits** come last in each call: a cancel token, a limit in time.
///
/// @code{.cpp}
/// dk::Cancel cancel;  // another thread calls cancel.set()
/// auto pulled = phone.pull({{"/sdcard/DCIM", "photos"}}, {}, {cancel, std::chrono::minutes(10)});
/// if (pulled.code() == DK_CANCELLED) …
/// @endcode
///
/// **Callbacks** take lambdas with captures. Those of a call come on the caller's thread; an exception that one throws ends
/// the call and comes out of it. Those of a dk::Watch, a dk::Log, a dk::Shell and of a client's log come on other threads, where
/// an exception ends the program (std::terminate).
///
/// **Lifetime**: clients and devices are handles. They may be copied, also into lambdas that run on other threads, and copies
/// share what they stand for. A device keeps its client alive, a watch its client, a log and a shell their
/// device. Running out of memory is std::bad_alloc.
#ifndef DAROKLEIM_CLIENT_HPP
#define DAROKLEIM_CLIENT_HPP

#include <darokleim/client.h>

#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

/// The client for C++17.
namespace dk {

/// What went wrong: a copy of the library's ::dk_error. Copies of it share its texts.
class Error : public std::exception {
 public:
  /// @param[in] code What went wrong, where that is all there is to say.
  explicit Error(dk_code code)
      : code_(code), texts_(std::make_shared<const Texts>(Texts{dk_code_name(code), {}, {}, {}})) {}
  /// @param[in] error Copied.
  explicit Error(const dk_error& error)
      : code_(dk_error_code(&error)),
        texts_(std::make_shared<const Texts>(Texts{dk_error_message(&error), Text(dk_error_path(&error)),
                                                   Text(dk_error_reason(&error)),
                                                   Text(dk_error_words(&error))})),
        errno_(dk_error_errno(&error)),
        exit_status_(dk_error_exit_status(&error)),
        on_host_(dk_error_on_host(&error)) {}
  /// @param[in] other Stays as it is, also where it is moved from: the two share their texts.
  Error(const Error& other) noexcept = default;
  /// @param[in] other Shares its texts.
  /// @return This object.
  Error& operator=(const Error& other) noexcept = default;
  ~Error() override = default;

  /// @return What to act on.
  dk_code code() const noexcept { return code_; }
  /// @return As message().
  const char* what() const noexcept override { return texts_->message.c_str(); }
  /// @return One plain English sentence to show.
  const std::string& message() const noexcept { return texts_->message; }
  /// @return The path that it is about; empty when it is about none.
  const std::string& path() const noexcept { return texts_->path; }
  /// @return Why an application was not installed or removed, as Android names it; otherwise empty.
  const std::string& reason() const noexcept { return texts_->reason; }
  /// @return What the server or the phone said; empty when it said nothing.
  const std::string& words() const noexcept { return texts_->words; }
  /// @return The errno; 0 when there is none.
  int system_error() const noexcept { return errno_; }
  /// @return The exit status of the phone's program; -1 when there is none.
  int exit_status() const noexcept { return exit_status_; }
  /// @return Whether the path, or the errno, is this computer's and not the phone's.
  bool on_host() const noexcept { return on_host_; }

 private:
  static std::string Text(const char* text) { return text == nullptr ? std::string() : std::string(text); }

  struct Texts {
    std::string message, path, reason, words;
  };

  dk_code code_;
  std::shared_ptr<const Texts> texts_;
  int errno_ = 0;
  int exit_status_ = -1;
  bool on_host_ = false;
};

/// A value or an error.
template <typename T>
class [[nodiscard]] Result {
 public:
  /// @param[in] value What the call gives.
  // NOLINTNEXTLINE(google-explicit-constructor): a function returns either as it is
  Result(T value) : state_(std::in_place_index<0>, std::move(value)) {}
  /// @param[in] error Why there is no value.
  // NOLINTNEXTLINE(google-explicit-constructor)
  Result(const Error& error) : state_(std::in_place_index<1>, error) {}

  /// @return Whether there is a value.
  bool ok() const noexcept { return state_.index() == 0; }
  /// @return Whether there is a value.
  explicit operator bool() const noexcept { return ok(); }
  /// @return ::DK_OK, or the error's code.
  dk_code code() const noexcept { return ok() ? DK_OK : std::get<1>(state_).code(); }
  /// @return The error. Throws std::bad_variant_access when there is a value.
  const Error& error() const { return std::get<1>(state_); }

  /// @return The value. Throws the error when there is none.
  T& value() & {
    if (!ok()) throw Error(std::get<1>(state_));
    return std::get<0>(state_);
  }
  /// Throws the error when there is no value.
  /// @return The value.
  const T& value() const& {
    if (!ok()) throw Error(std::get<1>(state_));
    return std::get<0>(state_);
  }
  /// @return The value itself, so that `for (… : phone.list(folder).value())` keeps what it runs over. Throws the error
  /// when there is none.
  T value() && {
    if (!ok()) throw Error(std::get<1>(state_));
    return std::move(std::get<0>(state_));
  }
  /// @param[in] other What is taken in place of an error.
  /// @return The value, or @p other.
  T value_or(T other) && { return ok() ? std::move(std::get<0>(state_)) : std::move(other); }

 private:
  std::variant<T, Error> state_;
};

/// Done, or an error.
template <>
class [[nodiscard]] Result<void> {
 public:
  /// Done.
  Result() = default;
  /// @param[in] error Why it is not done.
  // NOLINTNEXTLINE(google-explicit-constructor)
  Result(const Error& error) : error_(error) {}

  /// @return Whether it is done.
  bool ok() const noexcept { return !error_; }
  /// @return Whether it is done.
  explicit operator bool() const noexcept { return ok(); }
  /// @return ::DK_OK, or the error's code.
  dk_code code() const noexcept { return ok() ? DK_OK : error_->code(); }
  /// @return The error; there must be one.
  const Error& error() const { return *error_; }
  /// Throws the error if there is one.
  void value() const {
    if (error_) throw Error(*error_);
  }

 private:
  std::optional<Error> error_;
};

/// Ends calls from another thread. Copies share the token.
class Cancel {
 public:
  /// Throws dk::Error when this computer has no descriptors left.
  Cancel() {
    dk_cancel* token = nullptr;
    const dk_code code = dk_cancel_new(&token);
    if (code == DK_OUT_OF_MEMORY) throw std::bad_alloc();
    if (code != DK_OK) throw Error(code);
    token_.reset(token, dk_cancel_free);
  }
  /// Ends every call that has the token, now and later. From any thread, or a signal handler.
  void set() const noexcept { dk_cancel_set(token_.get()); }
  /// @return Whether it was set.
  bool is_set() const noexcept { return dk_cancel_is_set(token_.get()); }
  /// Makes the token usable again. No call may have it.
  void reset() const noexcept { dk_cancel_reset(token_.get()); }
  /// @return The token of the C interface, which stays this object's.
  dk_cancel* get() const noexcept { return token_.get(); }

 private:
  std::shared_ptr<dk_cancel> token_;
};

/// What any call may be given last.
struct Limits {
  std::optional<Cancel> cancel = {};       ///< none: cannot be cancelled
  std::chrono::milliseconds timeout = {};  ///< for the whole call; 0: no limit
};

/// A copy of ::dk_device_info.
struct DeviceInfo {
  std::string serial;                 ///< the name to open it by
  dk_state state = DK_STATE_UNKNOWN;  ///< whether it is usable
  std::string state_text;             ///< as the server words it
  dk_link link = DK_LINK_UNKNOWN;     ///< how it is attached
  std::string product;                ///< empty when not known
  std::string model;                  ///< empty when not known
  std::string device;                 ///< empty when not known
  std::string usb_path;               ///< empty when not known
  std::uint64_t transport_id = 0;     ///< new each time it is attached; 0 when not known

  DeviceInfo() = default;
  /// @param[in] info Copied.
  explicit DeviceInfo(const dk_device_info& info)
      : serial(info.serial),
        state(info.state),
        state_text(info.state_text),
        link(info.link),
        product(info.product),
        model(info.model),
        device(info.device),
        usb_path(info.usb_path),
        transport_id(info.transport_id) {}
};

/// A copy of ::dk_entry.
struct Entry {
  std::string path;                        ///< absolute
  std::string name;                        ///< the last part of path
  dk_type type = DK_UNKNOWN_TYPE;          ///< what it is
  std::uint32_t mode = 0;                  ///< type and permissions as in Linux
  std::optional<std::uint64_t> size;       ///< bytes; none where the phone cannot say it
  std::int64_t mtime = 0;                  ///< seconds since 1970, UTC
  std::optional<std::uint32_t> uid;        ///< the owner; none where the phone cannot say it
  std::optional<std::uint32_t> gid;        ///< the group; none where the phone cannot say it
  std::optional<std::string> link_target;  ///< of a link, where it was asked for

  Entry() = default;
  /// @param[in] entry Copied.
  explicit Entry(const dk_entry& entry)
      : path(entry.path),
        name(entry.name),
        type(entry.type),
        mode(entry.mode),
        size(entry.size_known ? std::optional<std::uint64_t>(entry.size) : std::nullopt),
        mtime(entry.mtime),
        uid(entry.has_owner ? std::optional<std::uint32_t>(entry.uid) : std::nullopt),
        gid(entry.has_owner ? std::optional<std::uint32_t>(entry.gid) : std::nullopt),
        link_target(entry.link_target == nullptr ? std::optional<std::string>() : entry.link_target) {}
};

/// What a command printed.
struct Output {
  std::string out;      ///< empty when RunOptions::on_output took it
  std::string err;      ///< empty when RunOptions::on_output took it
  bool cut = false;     ///< more came than was kept
  int exit_status = 0;  ///< 128 and more: ended by a signal
};

/// One file or folder to transfer.
struct Item {
  std::string source;  ///< a file or a folder
  std::string target;  ///< the file or folder that it becomes, not a folder to put it in
};

/// A copy of ::dk_app.
struct App {
  std::string package;                 ///< its name
  std::string version_name;            ///< empty when not known
  std::int64_t version_code = -1;      ///< -1 when not known
  bool system = false;                 ///< came with the phone
  bool enabled = true;                 ///< can be started
  std::uint64_t size = 0;              ///< bytes of its APKs; 0 unless asked for
  std::vector<std::string> apk_paths;  ///< on the phone

  App() = default;
  /// @param[in] app Copied.
  explicit App(const dk_app& app)
      : package(app.package),
        version_name(app.version_name),
        version_code(app.version_code),
        system(app.system),
        enabled(app.enabled),
        size(app.size),
        apk_paths(app.apk_paths, app.apk_paths + app.apk_count) {}
};

/// A copy of ::dk_volume.
struct Volume {
  std::string path;         ///< where it is mounted
  bool internal = false;    ///< not a card or a USB stick
  std::uint64_t total = 0;  ///< bytes
  std::uint64_t used = 0;   ///< bytes
  std::uint64_t free = 0;   ///< bytes that applications can still write
};

/// A copy of ::dk_mapping.
struct Mapping {
  std::string from;  ///< where is listened
  std::string to;    ///< where it connects to
};

/// Where the adb server is, and who starts one.
struct ClientOptions {
  std::string server = {};    ///< as dk_context_options::server; empty: from the environment
  std::string adb_path = {};  ///< the adb that starts a server where none answers; empty: none is started
  /// Called with each request to the server and its outcome, from any thread.
  std::function<void(std::string_view line)> log = {};
};

/// What a walk reports. Filters add up.
struct WalkOptions {
  std::uint32_t max_depth = 0;             ///< 1: the folder alone; 0: no limit
  std::uint32_t types = 0;                 ///< a set of (1u << dk_type); 0: all
  std::vector<std::string> suffixes = {};  ///< without the dot; empty: all. Files only
  std::uint64_t min_size = 0;              ///< bytes, of files
  std::uint64_t max_size = 0;              ///< bytes, of files; 0: no limit
  std::int64_t newer_than = 0;             ///< mtime after this, seconds since 1970; 0: all
  /// Called for each folder below that cannot be read; false ends the walk.
  std::function<bool(const Error& error)> on_error = {};
};

/// How files are transferred.
struct TransferOptions {
  dk_existing existing = DK_FAIL_IF_EXISTS;  ///< what to do with files that are at the target already
  bool keep_going =
      false;  ///< after a file's error: report it and go on; the call then ends with ::DK_PARTLY_DONE
  bool keep_times = true;   ///< modification times; ::DK_SKIP_SAME depends on it
  bool keep_modes = false;  ///< permissions, where the target can have them
  /// Before each block; false ends the call with ::DK_STOPPED.
  std::function<bool(const dk_progress& progress)> on_progress = {};
  /// Of one file, with its path, when the call keeps going; false ends the call.
  std::function<bool(const Error& error)> on_error = {};
  dk_summary* summary = nullptr;  ///< filled in the end, also when the call fails
};

/// How a command runs.
struct RunOptions {
  std::optional<std::string> input = {};  ///< for its standard input; not to phones before Android 7
  /// Each piece of the output as it comes; false ends the command. Without it the output is collected.
  std::function<bool(dk_stream stream, std::string_view data)> on_output = {};
  std::size_t most_collected = 0;  ///< bytes kept of each stream; 0: 1 MiB
};

/// What a shell session runs.
struct ShellOptions {
  std::optional<std::string> command = {};  ///< none: a shell that reads its commands from the input
  bool terminal = false;                    ///< through a terminal of the phone
  std::string terminal_type = {};           ///< TERM on the phone; empty: the phone's choice
  std::uint16_t rows = 0;                   ///< of the terminal's window; 0: not known
  std::uint16_t columns = 0;                ///< of the window
};

/// How an application is installed.
struct InstallOptions {
  bool replace = true;     ///< an installed version keeps its data
  bool downgrade = false;  ///< also an older version
  bool grant = false;      ///< all permissions that it asks for
  bool test = false;       ///< also one that is marked as for tests only
  /// Bytes sent, and to send in all; false ends the call.
  std::function<bool(std::uint64_t bytes_done, std::uint64_t bytes_total)> on_progress = {};
};

/// What a log gives.
struct LogOptions {
  std::vector<std::string> filters =
      {};                    ///< as logcat takes them, `ActivityManager:I`, `*:S`; empty: everything
  std::string buffers = {};  ///< `main,system,crash`; empty: the phone's choice
  bool only_new = false;     ///< not what is in the buffer already
  bool stop_at_end = false;  ///< what is in the buffer, then the end
  std::size_t most_old = 0;  ///< of what is in the buffer already, the last records alone; 0: all
};

/// @cond
namespace detail {

/// Runs callers' functions inside C callbacks, and keeps the exception that one throws.
class Catcher {
 public:
  template <typename Function>
  bool Run(Function&& function) noexcept {
    try {
      if constexpr (std::is_void_v<std::invoke_result_t<Function>>) {
        function();
        return true;
      } else {
        return static_cast<bool>(function());
      }
    } catch (...) {
      thrown_ = std::current_exception();
      return false;
    }
  }
  void Rethrow() const {
    if (thrown_) std::rethrow_exception(thrown_);
  }

 private:
  std::exception_ptr thrown_ = nullptr;
};

/// A caller's function as a C callback needs it.
template <typename Function>
struct Guarded {
  Function function;
  Catcher catcher = {};

  template <typename... Arguments>
  bool operator()(Arguments&&... arguments) noexcept {
    return catcher.Run([&] { return function(std::forward<Arguments>(arguments)...); });
  }
  void Rethrow() const { catcher.Rethrow(); }
};

template <typename Function>
Guarded<std::decay_t<Function>> Guard(Function&& function) {
  return {std::forward<Function>(function)};
}

/// The options of a call with callbacks, and what they throw.
template <typename Options>
struct Given {
  const Options& options;
  Catcher catcher = {};

  static Given& Of(void* user) { return *static_cast<Given*>(user); }
  static bool OnError(void* user, const dk_error* error) {
    Given& given = Of(user);
    return given.catcher.Run([&] { return given.options.on_error(Error(*error)); });
  }
};

/// The dk_call of one call, and its error.
class Call {
 public:
  explicit Call(const Limits& limits) {
    call_.cancel = limits.cancel ? limits.cancel->get() : nullptr;
    call_.timeout_ms = limits.timeout.count();
    call_.error = &error_;
  }
  ~Call() { dk_error_free(error_); }
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

  const dk_call* get() const { return &call_; }
  Error TakeError(dk_code code) const {
    if (code == DK_OUT_OF_MEMORY) throw std::bad_alloc();
    return error_ != nullptr ? Error(*error_) : Error(code);
  }
  Result<void> Done(dk_code code) const {
    if (code == DK_OK) return {};
    return TakeError(code);
  }
  template <typename T>
  Result<T> Give(dk_code code, T value) const {
    if (code == DK_OK) return Result<T>(std::move(value));
    return TakeError(code);
  }

 private:
  dk_error* error_ = nullptr;
  dk_call call_ = DK_CALL_INIT;
};

struct Free {
  void operator()(dk_context* context) const { dk_context_free(context); }
  void operator()(dk_watch* watch) const { dk_watch_stop(watch); }
  void operator()(dk_log* log) const { dk_log_stop(log); }
  void operator()(dk_shell* shell) const { dk_shell_stop(shell); }
  void operator()(dk_entry* entry) const { dk_entry_free(entry); }
  void operator()(dk_app* app) const { dk_app_free(app); }
};

/// A context and the function that its log goes to. Whatever is made from the context holds it.
struct Context {
  std::function<void(std::string_view)> log;  // outlives the context, which is declared after it
  std::unique_ptr<dk_context, Free> context;
};

/// What calls back on a thread of the library. It is stopped before what its callbacks use goes: by the order of the members, and in
/// an assignment.
template <typename Owner, typename Receiver, typename Handle>
struct Running {
  std::shared_ptr<Owner> owner;
  std::unique_ptr<Receiver> receiver;
  std::unique_ptr<Handle, Free> handle;

  Running() = default;
  Running(Running&& other) noexcept = default;
  Running& operator=(Running&& other) noexcept {
    handle.reset();
    receiver = std::move(other.receiver);
    handle = std::move(other.handle);
    owner = std::move(other.owner);
    return *this;
  }
  ~Running() = default;
};

inline std::string Copy(const dk_bytes& bytes) {
  return bytes.data == nullptr ? std::string() : std::string(bytes.data, bytes.size);
}

/// What the library allocates, given back however the scope is left.
struct OwnedBytes {
  dk_bytes bytes = {};
  OwnedBytes() = default;
  ~OwnedBytes() { dk_bytes_free(&bytes); }
  OwnedBytes(const OwnedBytes&) = delete;
  OwnedBytes& operator=(const OwnedBytes&) = delete;
};
struct OwnedOutput {
  dk_output output = {};
  OwnedOutput() = default;
  ~OwnedOutput() { dk_output_free(&output); }
  OwnedOutput(const OwnedOutput&) = delete;
  OwnedOutput& operator=(const OwnedOutput&) = delete;
};

inline const char* TextOrNull(const std::string& text) {
  return text.empty() ? nullptr : text.c_str();
}

inline std::vector<const char*> Pointers(const std::vector<std::string>& texts) {
  std::vector<const char*> pointers;
  pointers.reserve(texts.size());
  for (const std::string& text : texts) pointers.push_back(text.c_str());
  return pointers;
}

/// For an overload that takes a structure of the C interface: `{}` then means the one of C++. Where a function has no other
/// template parameter, one that is not used does the same, since functions come before templates.
template <typename Given, typename Plain>
using If = std::enable_if_t<std::is_same_v<std::decay_t<Given>, Plain>>;

}  // namespace detail
/// @endcond

/// @return The version of the library that runs.
inline std::string version() {
  return dk_version();
}

/// @param[in] text Any text.
/// @return The text as one word for the phone's shell.
inline std::string quote(const std::string& text) {
  detail::OwnedBytes quoted;
  if (dk_quote(text.c_str(), &quoted.bytes) != DK_OK) throw std::bad_alloc();
  return detail::Copy(quoted.bytes);
}

/// A log of the phone that runs; stops when it goes out of scope or another is moved to it. Its callbacks may stop it, but not
/// destroy it.
class Log {
 public:
  /// Stops it. No callback runs afterwards, or, when called from one, after that one has returned.
  void stop() { running_.handle.reset(); }

 private:
  friend class Device;
  struct Receiver {
    std::function<void(const dk_log_record&)> on_record;
    std::function<void(dk_code, const Error*)> on_end;
  };
  detail::Running<dk_device, Receiver, dk_log> running_;
};

/// A shell session; ends when it goes out of scope or another is moved to it. Its callbacks may stop it, but not destroy it.
class Shell {
 public:
  /// Ends it. No callback runs afterwards, or, when called from one, after that one has returned.
  void stop() { running_.handle.reset(); }
  /// Gives input to the command: dk_shell_write().
  /// @param[in] data,limits As there.
  /// @return Nothing, or the error.
  Result<void> write(std::string_view data, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_shell_write(running_.handle.get(), data.data(), data.size(), call.get()));
  }
  /// Ends the input after what was written: dk_shell_close_input().
  /// @return Nothing, or the error.
  Result<void> close_input() const {
    const detail::Call call({});
    return call.Done(dk_shell_close_input(running_.handle.get(), call.get()));
  }
  /// Says that the terminal's window has another size: dk_shell_resize().
  /// @param[in] rows,columns As there.
  /// @return Nothing, or the error.
  Result<void> resize(std::uint16_t rows, std::uint16_t columns) const {
    const detail::Call call({});
    return call.Done(dk_shell_resize(running_.handle.get(), rows, columns, call.get()));
  }

 private:
  friend class Device;
  struct Receiver {
    std::function<void(dk_stream, std::string_view)> on_output;
    std::function<void(dk_code, int, const Error*)> on_end;
  };
  detail::Running<dk_device, Receiver, dk_shell> running_;
};

/// Device changes; stops when it goes out of scope or another is moved to it. Its callback may stop it, but not destroy it.
class Watch {
 public:
  /// Stops it. No callback runs afterwards, or, when called from one, after that one has returned.
  void stop() { running_.handle.reset(); }

 private:
  friend class Client;
  using OnChange = std::function<void(dk_change, const DeviceInfo*)>;
  detail::Running<detail::Context, OnChange, dk_watch> running_;
};

/// One device. Copies are the same device; calls may be made from any thread.
class Device {
 public:
  /// @return The serial that it was opened with, or that of the only device.
  std::string serial() const { return dk_device_serial(device_.get()); }
  /// @return The device of the C interface, which stays this object's.
  dk_device* get() const noexcept { return device_.get(); }

  /// @name The device itself
  /// @{

  /// Asks for its state: dk_device_state().
  /// @param[in] limits As everywhere.
  /// @return The state, or the error.
  Result<dk_state> state(const Limits& limits = {}) const {
    dk_state state = DK_STATE_UNKNOWN;
    const detail::Call call(limits);
    const dk_code code = dk_device_state(get(), &state, call.get());
    return call.Give(code, state);
  }
  /// Waits for a state: dk_device_wait().
  /// @param[in] state,limits As there. Set a limit in time.
  /// @return Nothing, or the error.
  Result<void> wait(dk_state state, const Limits& limits) const {
    const detail::Call call(limits);
    return call.Done(dk_device_wait(get(), state, call.get()));
  }
  /// Restarts the phone: dk_device_reboot().
  /// @param[in] mode Empty for Android, otherwise as there.
  /// @param[in] limits As everywhere.
  /// @return Nothing, or the error.
  Result<void> reboot(const std::string& mode = "", const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_device_reboot(get(), detail::TextOrNull(mode), call.get()));
  }
  /// Has the server look for it again: dk_device_reconnect().
  /// @param[in] limits As everywhere.
  /// @return Nothing, or the error.
  Result<void> reconnect(const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_device_reconnect(get(), call.get()));
  }

  /// @}
  /// @name Files
  /// @{

  /// Looks at one file: dk_stat().
  /// @param[in] path,follow,limits As there.
  /// @return What it is, or the error.
  Result<Entry> stat(const std::string& path, dk_follow follow = DK_FOLLOW, const Limits& limits = {}) const {
    dk_entry* found = nullptr;
    const detail::Call call(limits);
    const dk_code code = dk_stat(get(), path.c_str(), follow, &found, call.get());
    const std::unique_ptr<dk_entry, detail::Free> owner(found);
    return call.Give(code, found == nullptr ? Entry() : Entry(*found));
  }
  /// Lists one folder: dk_list().
  /// @param[in] folder,limits As there.
  /// @return All of its entries, or the error.
  Result<std::vector<Entry>> list(const std::string& folder, const Limits& limits = {}) const {
    std::vector<Entry> entries;
    auto listed = list(
        folder,
        [&](const dk_entry& entry) {
          entries.emplace_back(entry);
          return true;
        },
        limits);
    if (!listed) return listed.error();
    return entries;
  }
  /// Lists one folder: dk_list().
  /// @param[in] folder,limits As there.
  /// @param[in] on_entry bool(const dk_entry&), as entries arrive; false ends the listing with ::DK_STOPPED.
  /// @return Nothing, or the error.
  template <typename OnEntry, typename = std::enable_if_t<std::is_invocable_v<OnEntry&, const dk_entry&>>>
  Result<void> list(const std::string& folder, OnEntry&& on_entry, const Limits& limits = {}) const {
    auto guarded = detail::Guard(std::forward<OnEntry>(on_entry));
    const detail::Call call(limits);
    const dk_code code =
        dk_list(get(), folder.c_str(), &Pass<decltype(guarded), dk_entry>, &guarded, call.get());
    guarded.Rethrow();
    return call.Done(code);
  }
  /// Lists everything below a folder: dk_walk().
  /// @param[in] folder,limits As there.
  /// @param[in] options Filters.
  /// @param[in] on_entry bool(const dk_entry&), as entries arrive; false ends the walk with ::DK_STOPPED.
  /// @return Nothing, or the error.
  template <typename OnEntry>
  Result<void> walk(const std::string& folder, const WalkOptions& options, OnEntry&& on_entry,
                    const Limits& limits = {}) const {
    struct Walking : detail::Given<WalkOptions> {
      std::decay_t<OnEntry> on_entry;
    };
    Walking walking{{options}, std::forward<OnEntry>(on_entry)};
    const auto suffixes = detail::Pointers(options.suffixes);
    dk_walk_options plain = DK_WALK_OPTIONS_INIT;
    plain.max_depth = options.max_depth;
    plain.types = options.types;
    plain.suffixes = suffixes.empty() ? nullptr : suffixes.data();
    plain.suffix_count = suffixes.size();
    plain.min_size = options.min_size;
    plain.max_size = options.max_size;
    plain.newer_than = options.newer_than;
    if (options.on_error) {
      plain.on_error = [](void* user, const dk_error* error) {
        auto& to = *static_cast<Walking*>(user);
        return to.catcher.Run([&] { return to.options.on_error(Error(*error)); });
      };
    }
    const auto on_each = [](void* user, const dk_entry* entry) {
      auto& to = *static_cast<Walking*>(user);
      return to.catcher.Run([&] { return to.on_entry(*entry); });
    };
    const detail::Call call(limits);
    const dk_code code = dk_walk(get(), folder.c_str(), &plain, on_each, &walking, call.get());
    walking.catcher.Rethrow();
    return call.Done(code);
  }
  /// Lists everything below a folder, with the options of the C interface; their on_error is not given a user.
  /// @param[in] folder,options,on_entry,limits As above.
  /// @return Nothing, or the error.
  template <typename Plain, typename OnEntry, typename = detail::If<Plain, dk_walk_options>>
  Result<void> walk(const std::string& folder, const Plain& options, OnEntry&& on_entry,
                    const Limits& limits = {}) const {
    auto guarded = detail::Guard(std::forward<OnEntry>(on_entry));
    const detail::Call call(limits);
    const dk_code code =
        dk_walk(get(), folder.c_str(), &options, &Pass<decltype(guarded), dk_entry>, &guarded, call.get());
    guarded.Rethrow();
    return call.Done(code);
  }
  /// Reads a file, or a part of it, into memory: dk_read().
  /// @param[in] path,offset,length,limits As there. Length 0: all there is.
  /// @return The bytes, or the error.
  Result<std::string> read(const std::string& path, std::uint64_t offset = 0, std::uint64_t length = 0,
                           const Limits& limits = {}) const {
    std::string content;
    auto done = read(
        path, offset, length,
        [&](std::string_view data) {
          content += data;
          return true;
        },
        limits);
    if (!done) return done.error();
    return content;
  }
  /// Reads a file, or a part of it, as it arrives: dk_read().
  /// @param[in] path,offset,length,limits As there. Length 0: all there is.
  /// @param[in] on_bytes bool(std::string_view), for each piece; false ends the call with ::DK_STOPPED.
  /// @return Nothing, or the error.
  template <typename OnBytes, typename = std::enable_if_t<std::is_invocable_v<OnBytes&, std::string_view>>>
  Result<void> read(const std::string& path, std::uint64_t offset, std::uint64_t length, OnBytes&& on_bytes,
                    const Limits& limits = {}) const {
    auto guarded = detail::Guard(std::forward<OnBytes>(on_bytes));
    const auto pass = [](void* user, const char* data, std::size_t size) {
      return (*static_cast<decltype(guarded)*>(user))(std::string_view(data, size));
    };
    const detail::Call call(limits);
    const dk_code code = dk_read(get(), path.c_str(), offset, length, pass, &guarded, call.get());
    guarded.Rethrow();
    return call.Done(code);
  }
  /// Writes a file: dk_write().
  /// @param[in] path,mode,replace,limits As there.
  /// @param[in] content What the file holds then.
  /// @return Nothing, or the error.
  Result<void> write(const std::string& path, std::string_view content, std::uint32_t mode = 0644,
                     bool replace = false, const Limits& limits = {}) const {
    return write_from(
        path,
        [&](char* buffer, std::size_t capacity) {
          const std::size_t count = content.copy(buffer, capacity);
          content.remove_prefix(count);
          return static_cast<std::int64_t>(count);
        },
        mode, replace, 0, limits);
  }
  /// Writes what a source gives as one file: dk_write().
  /// @param[in] path,mode,replace,mtime,limits As there.
  /// @param[in] source std::int64_t(char* buffer, std::size_t capacity): fills the buffer and returns how many bytes, 0 at
  /// the end, a negative number to end the call with ::DK_STOPPED.
  /// @return Nothing, or the error.
  template <typename Source>
  Result<void> write_from(const std::string& path, Source&& source, std::uint32_t mode = 0644,
                          bool replace = false, std::int64_t mtime = 0, const Limits& limits = {}) const {
    auto guarded = detail::Guard(std::forward<Source>(source));
    const detail::Call call(limits);
    const dk_code code =
        dk_write(get(), path.c_str(), mode, mtime, replace, &Fill<decltype(guarded)>, &guarded, call.get());
    guarded.Rethrow();
    return call.Done(code);
  }
  /// Makes a folder: dk_make_folder().
  /// @param[in] path,parents,limits As there.
  /// @return Nothing, or the error.
  Result<void> make_folder(const std::string& path, bool parents = false, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_make_folder(get(), path.c_str(), parents, call.get()));
  }
  /// Removes a file or a folder: dk_remove().
  /// @param[in] path,recursive,limits As there.
  /// @return Nothing, or the error.
  Result<void> remove(const std::string& path, bool recursive = false, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_remove(get(), path.c_str(), recursive, call.get()));
  }
  /// Renames or moves on the phone: dk_move().
  /// @param[in] from,to,replace,limits As there.
  /// @return Nothing, or the error.
  Result<void> move(const std::string& from, const std::string& to, bool replace = false,
                    const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_move(get(), from.c_str(), to.c_str(), replace, call.get()));
  }
  /// Copies on the phone: dk_copy().
  /// @param[in] from,to,replace,limits As there.
  /// @return Nothing, or the error.
  Result<void> copy(const std::string& from, const std::string& to, bool replace = false,
                    const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_copy(get(), from.c_str(), to.c_str(), replace, call.get()));
  }
  /// Changes permissions: dk_chmod().
  /// @param[in] path,mode,limits As there.
  /// @return Nothing, or the error.
  Result<void> chmod(const std::string& path, std::uint32_t mode, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_chmod(get(), path.c_str(), mode, call.get()));
  }

  /// @}
  /// @name Transfers
  /// @{

  /// Sends files and folders to the phone: dk_push().
  /// @param[in] items,limits As there.
  /// @param[in] options What to do with existing files, progress, errors.
  /// @return What was done, or the error. Where a call that keeps going ends with ::DK_PARTLY_DONE, or is stopped,
  /// TransferOptions::summary has what was done.
  Result<dk_summary> push(const std::vector<Item>& items, const TransferOptions& options = {},
                          const Limits& limits = {}) const {
    return Transfer(dk_push, items, options, limits);
  }
  /// Fetches files and folders from the phone: dk_pull().
  /// @param[in] items,options,limits As for push().
  /// @return As push().
  Result<dk_summary> pull(const std::vector<Item>& items, const TransferOptions& options = {},
                          const Limits& limits = {}) const {
    return Transfer(dk_pull, items, options, limits);
  }
  /// The same with the options and callbacks of the C interface.
  /// @param[in] items,options,limits As above.
  /// @return As above.
  template <int = 0>
  Result<dk_summary> push(const std::vector<Item>& items, const dk_transfer_options& options,
                          const Limits& limits = {}) const {
    return TransferPlain(dk_push, items, options, limits);
  }
  /// The same with the options and callbacks of the C interface.
  /// @param[in] items,options,limits As above.
  /// @return As above.
  template <int = 0>
  Result<dk_summary> pull(const std::vector<Item>& items, const dk_transfer_options& options,
                          const Limits& limits = {}) const {
    return TransferPlain(dk_pull, items, options, limits);
  }

  /// @}
  /// @name Commands
  /// @{

  /// Runs a program of the phone, which gets the arguments as they are; no shell reads them: dk_run().
  /// @param[in] arguments,options,limits As there.
  /// @return What it printed, whatever its exit status, or the error.
  Result<Output> run(const std::vector<std::string>& arguments, const RunOptions& options,
                     const Limits& limits = {}) const {
    const auto pointers = detail::Pointers(arguments);
    return Run(options, limits, [&](const dk_run_options* plain, dk_output* output, const dk_call* call) {
      return dk_run(get(), pointers.data(), pointers.size(), plain, output, call);
    });
  }
  /// Runs a program of the phone: dk_run().
  /// @param[in] arguments,limits As above.
  /// @return As above.
  Result<Output> run(const std::vector<std::string>& arguments, const Limits& limits = {}) const {
    return run(arguments, RunOptions(), limits);
  }
  /// Runs a script, which the phone's shell reads: dk_run_script(). Quote what comes from elsewhere with dk::quote().
  /// @param[in] script,options,limits As there.
  /// @return What it printed, whatever its exit status, or the error.
  Result<Output> run_script(const std::string& script, const RunOptions& options,
                            const Limits& limits = {}) const {
    return Run(options, limits, [&](const dk_run_options* plain, dk_output* output, const dk_call* call) {
      return dk_run_script(get(), script.c_str(), plain, output, call);
    });
  }
  /// Runs a script: dk_run_script().
  /// @param[in] script,limits As above.
  /// @return As above.
  Result<Output> run_script(const std::string& script, const Limits& limits = {}) const {
    return run_script(script, RunOptions(), limits);
  }
  /// Starts a command or a shell that is given input while it runs: dk_shell_start().
  /// @param[in] options What it runs.
  /// @param[in] on_output Called on a thread of the session, must not throw.
  /// @param[in] on_end Called at the end with the code, the exit status (-1: unknown) and the error, if any, also there. May be
  /// empty.
  /// @param[in] limits For the start alone.
  /// @return The running session, or the error.
  Result<Shell> shell(const ShellOptions& options,
                      std::function<void(dk_stream stream, std::string_view data)> on_output,
                      std::function<void(dk_code code, int exit_status, const Error* error)> on_end = nullptr,
                      const Limits& limits = {}) const {
    dk_shell_options plain = DK_SHELL_OPTIONS_INIT;
    plain.command = options.command ? options.command->c_str() : nullptr;
    plain.terminal = options.terminal;
    plain.terminal_type = detail::TextOrNull(options.terminal_type);
    plain.rows = options.rows;
    plain.columns = options.columns;
    return shell(plain, std::move(on_output), std::move(on_end), limits);
  }
  /// Starts a command or a shell, with the options of the C interface.
  /// @param[in] options,on_output,on_end,limits As above.
  /// @return As above.
  template <int = 0>
  Result<Shell> shell(const dk_shell_options& options,
                      std::function<void(dk_stream stream, std::string_view data)> on_output,
                      std::function<void(dk_code code, int exit_status, const Error* error)> on_end = nullptr,
                      const Limits& limits = {}) const {
    Shell shell;
    shell.running_.owner = device_;
    shell.running_.receiver =
        std::make_unique<Shell::Receiver>(Shell::Receiver{std::move(on_output), std::move(on_end)});
    dk_shell* started = nullptr;
    const detail::Call call(limits);
    const dk_code code = dk_shell_start(
        get(), &options,
        [](void* user, dk_stream stream, const char* data, std::size_t size) noexcept {
          static_cast<Shell::Receiver*>(user)->on_output(stream, std::string_view(data, size));
        },
        [](void* user, dk_code end, int exit_status, const dk_error* error) noexcept {
          const auto& ended = static_cast<Shell::Receiver*>(user)->on_end;
          const std::optional<Error> copy = error == nullptr ? std::optional<Error>() : Error(*error);
          if (ended) ended(end, exit_status, copy ? &*copy : nullptr);
        },
        shell.running_.receiver.get(), &started, call.get());
    shell.running_.handle.reset(started);
    return call.Give(code, std::move(shell));
  }

  /// @}
  /// @name Applications
  /// @{

  /// Lists the applications: dk_apps().
  /// @param[in] set,sizes,limits As there.
  /// @return The applications, or the error.
  Result<std::vector<App>> apps(dk_app_set set = DK_ALL_APPS, bool sizes = false,
                                const Limits& limits = {}) const {
    return Collect<App, dk_app>(
        limits, [](const dk_app& app) { return App(app); },
        [&](auto on_app, void* user, const dk_call* call) {
          return dk_apps(get(), set, sizes, on_app, user, call);
        });
  }
  /// Asks for one application: dk_app_get().
  /// @param[in] package,limits As there.
  /// @return The application with its size, or the error.
  Result<App> app(const std::string& package, const Limits& limits = {}) const {
    dk_app* found = nullptr;
    const detail::Call call(limits);
    const dk_code code = dk_app_get(get(), package.c_str(), &found, call.get());
    const std::unique_ptr<dk_app, detail::Free> owner(found);
    return call.Give(code, found == nullptr ? App() : App(*found));
  }
  /// Installs an application: dk_app_install().
  /// @param[in] apk_paths,options,limits As there.
  /// @return Nothing, or the error, with Android's reason.
  Result<void> install(const std::vector<std::string>& apk_paths, const InstallOptions& options = {},
                       const Limits& limits = {}) const {
    detail::Given<InstallOptions> given{options};
    dk_install_options plain = DK_INSTALL_OPTIONS_INIT;
    plain.replace = options.replace;
    plain.downgrade = options.downgrade;
    plain.grant = options.grant;
    plain.test = options.test;
    plain.user = &given;
    if (options.on_progress) {
      plain.on_progress = [](void* user, std::uint64_t done, std::uint64_t total) {
        auto& to = detail::Given<InstallOptions>::Of(user);
        return to.catcher.Run([&] { return to.options.on_progress(done, total); });
      };
    }
    auto installed = install(apk_paths, plain, limits);
    given.catcher.Rethrow();
    return installed;
  }
  /// Installs an application, with the options of the C interface.
  /// @param[in] apk_paths,options,limits As above.
  /// @return As above.
  template <int = 0>
  Result<void> install(const std::vector<std::string>& apk_paths, const dk_install_options& options,
                       const Limits& limits = {}) const {
    const auto pointers = detail::Pointers(apk_paths);
    const detail::Call call(limits);
    return call.Done(dk_app_install(get(), pointers.data(), pointers.size(), &options, call.get()));
  }
  /// Removes an application: dk_app_uninstall().
  /// @param[in] package,keep_data,limits As there.
  /// @return Nothing, or the error.
  Result<void> uninstall(const std::string& package, bool keep_data = false,
                         const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_app_uninstall(get(), package.c_str(), keep_data, call.get()));
  }
  /// Starts an application: dk_app_start().
  /// @param[in] package,limits As there.
  /// @param[in] activity Empty: what the launcher would start.
  /// @return Nothing, or the error.
  Result<void> start(const std::string& package, const std::string& activity = "",
                     const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_app_start(get(), package.c_str(), detail::TextOrNull(activity), call.get()));
  }
  /// Ends an application: dk_app_stop().
  /// @param[in] package,limits As there.
  /// @return Nothing, or the error.
  Result<void> stop(const std::string& package, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_app_stop(get(), package.c_str(), call.get()));
  }
  /// Deletes an application's data: dk_app_clear().
  /// @param[in] package,limits As there.
  /// @return Nothing, or the error.
  Result<void> clear(const std::string& package, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_app_clear(get(), package.c_str(), call.get()));
  }

  /// @}
  /// @name Backups
  /// @{

  /// Saves the data of an application: dk_backup().
  /// @param[in] package,limits As there.
  /// @param[in] on_bytes Called as bool(std::string_view) with each piece; false ends the call.
  /// @return Nothing, or the error.
  template <typename OnBytes>
  Result<void> backup(const std::string& package, OnBytes&& on_bytes, const Limits& limits = {}) const {
    auto guarded = detail::Guard([&](const char* data, std::size_t size) {
      return static_cast<bool>(on_bytes(std::string_view(data, size)));
    });
    const auto pass = [](void* user, const char* data, std::size_t size) {
      return (*static_cast<decltype(guarded)*>(user))(data, size);
    };
    const detail::Call call(limits);
    const dk_code code = dk_backup(get(), package.c_str(), pass, &guarded, call.get());
    guarded.Rethrow();
    return call.Done(code);
  }
  /// Sends a backup to the phone: dk_restore().
  /// @param[in] source Called as std::int64_t(char* buffer, std::size_t capacity); returns how much it filled, 0 at the end.
  /// @param[in] limits As everywhere.
  /// @return Nothing, or the error.
  template <typename Source>
  Result<void> restore(Source&& source, const Limits& limits = {}) const {
    auto guarded = detail::Guard(std::forward<Source>(source));
    const detail::Call call(limits);
    const dk_code code = dk_restore(get(), &Fill<decltype(guarded)>, &guarded, call.get());
    guarded.Rethrow();
    return call.Done(code);
  }
  /// Closes the phone's question about a backup or a restore: dk_backup_dismiss().
  /// @param[in] limits As everywhere.
  /// @return Nothing, or the error.
  Result<void> dismiss_backup(const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_backup_dismiss(get(), call.get()));
  }

  /// @}
  /// @name Facts
  /// @{

  /// Reads all system properties: dk_properties().
  /// @param[in] limits As everywhere.
  /// @return Names and values, or the error.
  Result<std::vector<std::pair<std::string, std::string>>> properties(const Limits& limits = {}) const {
    std::vector<std::pair<std::string, std::string>> found;
    auto guarded = detail::Guard([&](const char* name, const char* value) {
      found.emplace_back(name, value);
      return true;
    });
    const auto pass = [](void* user, const char* name, const char* value) {
      return (*static_cast<decltype(guarded)*>(user))(name, value);
    };
    const detail::Call call(limits);
    const dk_code code = dk_properties(get(), pass, &guarded, call.get());
    guarded.Rethrow();
    return call.Give(code, std::move(found));
  }
  /// Asks for the battery: dk_battery_get().
  /// @param[in] limits As everywhere.
  /// @return The battery, or the error.
  Result<dk_battery> battery(const Limits& limits = {}) const {
    return Fact<dk_battery>(dk_battery_get, limits);
  }
  /// Asks for the screen's size: dk_screen_get().
  /// @param[in] limits As everywhere.
  /// @return The screen, or the error.
  Result<dk_screen> screen(const Limits& limits = {}) const { return Fact<dk_screen>(dk_screen_get, limits); }
  /// Asks for the memory: dk_memory_get().
  /// @param[in] limits As everywhere.
  /// @return The memory, or the error.
  Result<dk_memory> memory(const Limits& limits = {}) const { return Fact<dk_memory>(dk_memory_get, limits); }
  /// Asks for the storage: dk_volumes().
  /// @param[in] limits As everywhere.
  /// @return The volumes, or the error.
  Result<std::vector<Volume>> volumes(const Limits& limits = {}) const {
    return Collect<Volume, dk_volume>(
        limits,
        [](const dk_volume& volume) {
          return Volume{volume.path, volume.internal, volume.total, volume.used, volume.free};
        },
        [&](auto on_volume, void* user, const dk_call* call) {
          return dk_volumes(get(), on_volume, user, call);
        });
  }

  /// @}
  /// @name Screen and input
  /// @{

  /// Takes a picture of the screen: dk_screenshot().
  /// @param[in] limits As everywhere.
  /// @return The bytes of a PNG, or the error.
  Result<std::string> screenshot(const Limits& limits = {}) const {
    detail::OwnedBytes png;
    const detail::Call call(limits);
    const dk_code code = dk_screenshot(get(), &png.bytes, call.get());
    return call.Give(code, detail::Copy(png.bytes));
  }
  /// Types text: dk_type_text().
  /// @param[in] text,limits As there.
  /// @return Nothing, or the error.
  Result<void> type_text(const std::string& text, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_type_text(get(), text.c_str(), call.get()));
  }
  /// Presses a key: dk_press_key().
  /// @param[in] key,limits As there.
  /// @return Nothing, or the error.
  Result<void> press_key(const std::string& key, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_press_key(get(), key.c_str(), call.get()));
  }
  /// Taps the screen: dk_tap().
  /// @param[in] x,y,limits As there.
  /// @return Nothing, or the error.
  Result<void> tap(int x, int y, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_tap(get(), x, y, call.get()));
  }
  /// Swipes over the screen: dk_swipe().
  /// @param[in] x1,y1,x2,y2,limits As there.
  /// @param[in] duration How long it takes.
  /// @return Nothing, or the error.
  Result<void> swipe(int x1, int y1, int x2, int y2, std::chrono::milliseconds duration,
                     const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_swipe(get(), x1, y1, x2, y2, static_cast<int>(duration.count()), call.get()));
  }

  /// @}
  /// @name The log
  /// @{

  /// Follows the phone's log: dk_log_start(). Both callbacks come on a thread of the log, and must not throw.
  /// @param[in] options,limits As there.
  /// @param[in] on_record Each record.
  /// @param[in] on_end Once, last, with a null error when it ended as asked.
  /// @return The running log, or the error.
  Result<Log> log(const LogOptions& options, std::function<void(const dk_log_record&)> on_record,
                  std::function<void(dk_code, const Error*)> on_end = nullptr,
                  const Limits& limits = {}) const {
    const auto filters = detail::Pointers(options.filters);
    dk_log_options plain = DK_LOG_OPTIONS_INIT;
    plain.filters = filters.empty() ? nullptr : filters.data();
    plain.filter_count = filters.size();
    plain.buffers = detail::TextOrNull(options.buffers);
    plain.only_new = options.only_new;
    plain.stop_at_end = options.stop_at_end;
    plain.most_old = options.most_old;
    return log(plain, std::move(on_record), std::move(on_end), limits);
  }
  /// Follows the phone's log, with the options of the C interface.
  /// @param[in] options,on_record,on_end,limits As above.
  /// @return As above.
  template <int = 0>
  Result<Log> log(const dk_log_options& options, std::function<void(const dk_log_record&)> on_record,
                  std::function<void(dk_code, const Error*)> on_end = nullptr,
                  const Limits& limits = {}) const {
    Log log;
    log.running_.owner = device_;
    log.running_.receiver =
        std::make_unique<Log::Receiver>(Log::Receiver{std::move(on_record), std::move(on_end)});
    dk_log* started = nullptr;
    const detail::Call call(limits);
    const dk_code code = dk_log_start(
        get(), &options,
        [](void* user, const dk_log_record* record) noexcept {
          static_cast<Log::Receiver*>(user)->on_record(*record);
        },
        [](void* user, dk_code end, const dk_error* error) noexcept {
          const auto& ended = static_cast<Log::Receiver*>(user)->on_end;
          const std::optional<Error> copy = error == nullptr ? std::optional<Error>() : Error(*error);
          if (ended) ended(end, copy ? &*copy : nullptr);
        },
        log.running_.receiver.get(), &started, call.get());
    log.running_.handle.reset(started);
    return call.Give(code, std::move(log));
  }
  /// Empties the phone's log: dk_log_clear().
  /// @param[in] limits As everywhere.
  /// @return Nothing, or the error.
  Result<void> clear_log(const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_log_clear(get(), call.get()));
  }

  /// @}
  /// @name Ports
  /// @{

  /// Connects an address of this computer to the phone: dk_forward_add().
  /// @param[in] from,to,replace,limits As there.
  /// @return The port that this computer listens on, for `tcp:0` the one that the server chose, or the error.
  Result<int> forward(const std::string& from, const std::string& to, bool replace = false,
                      const Limits& limits = {}) const {
    int port = 0;
    const detail::Call call(limits);
    const dk_code code = dk_forward_add(get(), from.c_str(), to.c_str(), replace, &port, call.get());
    return call.Give(code, port);
  }
  /// Removes one: dk_forward_remove().
  /// @param[in] from Empty removes all of this device.
  /// @param[in] limits As everywhere.
  /// @return Nothing, or the error.
  Result<void> remove_forward(const std::string& from, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_forward_remove(get(), detail::TextOrNull(from), call.get()));
  }
  /// Lists them: dk_forward_list().
  /// @param[in] limits As everywhere.
  /// @return Those of this device, or the error.
  Result<std::vector<Mapping>> forwards(const Limits& limits = {}) const {
    return Mappings(dk_forward_list, limits);
  }
  /// Connects an address of the phone to this computer: dk_reverse_add().
  /// @param[in] from,to,replace,limits As there.
  /// @return The port that the phone listens on, or the error.
  Result<int> reverse(const std::string& from, const std::string& to, bool replace = false,
                      const Limits& limits = {}) const {
    int port = 0;
    const detail::Call call(limits);
    const dk_code code = dk_reverse_add(get(), from.c_str(), to.c_str(), replace, &port, call.get());
    return call.Give(code, port);
  }
  /// Removes one: dk_reverse_remove().
  /// @param[in] from Empty removes all of this device.
  /// @param[in] limits As everywhere.
  /// @return Nothing, or the error.
  Result<void> remove_reverse(const std::string& from, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_reverse_remove(get(), detail::TextOrNull(from), call.get()));
  }
  /// Lists them: dk_reverse_list().
  /// @param[in] limits As everywhere.
  /// @return Those of this device, or the error.
  Result<std::vector<Mapping>> reverses(const Limits& limits = {}) const {
    return Mappings(dk_reverse_list, limits);
  }

  /// @}

 private:
  friend class Client;
  Device(dk_device* device, std::shared_ptr<detail::Context> context)
      : device_(device, [context = std::move(context)](dk_device* last) { dk_device_free(last); }) {}

  template <typename Guarded, typename Value>
  static bool Pass(void* user, const Value* value) {
    return (*static_cast<Guarded*>(user))(*value);
  }
  // The caller's source as a C callback.
  template <typename Guarded>
  static std::int64_t Fill(void* user, char* buffer, std::size_t capacity) {
    auto& from = *static_cast<Guarded*>(user);
    std::int64_t count = 0;
    const bool given = from.catcher.Run([&] { count = from.function(buffer, capacity); });
    return given ? count : -1;
  }
  template <typename Value>
  Result<Value> Fact(dk_code (*ask)(dk_device*, Value*, const dk_call*), const Limits& limits) const {
    Value value = {};
    const detail::Call call(limits);
    const dk_code code = ask(get(), &value, call.get());
    return call.Give(code, std::move(value));
  }
  // What a call hands to its callback, one by one, as values.
  template <typename Value, typename Plain, typename Convert, typename Ask>
  static Result<std::vector<Value>> Collect(const Limits& limits, Convert convert, Ask ask) {
    std::vector<Value> found;
    auto guarded = detail::Guard([&](const Plain& plain) {
      found.push_back(convert(plain));
      return true;
    });
    const detail::Call call(limits);
    const dk_code code = ask(&Pass<decltype(guarded), Plain>, &guarded, call.get());
    guarded.Rethrow();
    return call.Give(code, std::move(found));
  }
  template <typename Function>
  Result<std::vector<Mapping>> Mappings(Function function, const Limits& limits) const {
    return Collect<Mapping, dk_mapping>(
        limits,
        [](const dk_mapping& mapping) {
          return Mapping{mapping.from, mapping.to};
        },
        [&](auto on_mapping, void* user, const dk_call* call) {
          return function(get(), on_mapping, user, call);
        });
  }
  template <typename Function>
  Result<dk_summary> TransferPlain(Function function, const std::vector<Item>& items,
                                   const dk_transfer_options& options, const Limits& limits,
                                   dk_summary* copy = nullptr) const {
    std::vector<dk_item> plain;
    plain.reserve(items.size());
    for (const Item& item : items) plain.push_back({item.source.c_str(), item.target.c_str()});
    dk_summary summary = {};
    const detail::Call call(limits);
    const dk_code code = function(get(), plain.data(), plain.size(), &options, &summary, call.get());
    if (copy != nullptr) *copy = summary;
    return call.Give(code, summary);
  }
  template <typename Function>
  Result<dk_summary> Transfer(Function function, const std::vector<Item>& items,
                              const TransferOptions& options, const Limits& limits) const {
    using Given = detail::Given<TransferOptions>;
    Given given{options};
    dk_transfer_options plain = DK_TRANSFER_OPTIONS_INIT;
    plain.existing = options.existing;
    plain.keep_going = options.keep_going;
    plain.keep_times = options.keep_times;
    plain.keep_modes = options.keep_modes;
    plain.user = &given;
    if (options.on_error) plain.on_error = &Given::OnError;
    if (options.on_progress) {
      plain.on_progress = [](void* user, const dk_progress* progress) {
        Given& to = Given::Of(user);
        return to.catcher.Run([&] { return to.options.on_progress(*progress); });
      };
    }
    auto done = TransferPlain(function, items, plain, limits, options.summary);
    given.catcher.Rethrow();
    return done;
  }
  template <typename Function>
  static Result<Output> Run(const RunOptions& options, const Limits& limits, Function function) {
    detail::Given<RunOptions> given{options};
    dk_run_options plain = DK_RUN_OPTIONS_INIT;
    if (options.input) {
      plain.input = options.input->data();
      plain.input_size = options.input->size();
    }
    plain.most_collected = options.most_collected;
    plain.user = &given;
    if (options.on_output) {
      plain.on_output = [](void* user, dk_stream stream, const char* data, std::size_t size) {
        auto& to = detail::Given<RunOptions>::Of(user);
        return to.catcher.Run([&] { return to.options.on_output(stream, std::string_view(data, size)); });
      };
    }
    detail::OwnedOutput owned;
    const detail::Call call(limits);
    const dk_code code = function(&plain, &owned.output, call.get());
    given.catcher.Rethrow();
    const dk_output& output = owned.output;
    return call.Give(
        code, Output{detail::Copy(output.out), detail::Copy(output.err), output.cut, output.exit_status});
  }

  std::shared_ptr<dk_device> device_;  // holds the context until it is freed
};

/// Where the adb server is. Copies share one context, which lives as long as anything that was made from it.
class Client {
 public:
  /// With the server that adb itself would use. Throws dk::Error.
  Client() : Client(ClientOptions()) {}
  /// Throws dk::Error.
  /// @param[in] options Where the server is, and who starts one.
  explicit Client(ClientOptions options) : context_(std::make_shared<detail::Context>()) {
    context_->log = std::move(options.log);
    dk_context_options plain = DK_CONTEXT_OPTIONS_INIT;
    plain.server = detail::TextOrNull(options.server);
    plain.adb_path = detail::TextOrNull(options.adb_path);
    if (context_->log) {
      plain.log_user = &context_->log;
      plain.log = [](void* user, const char* line) noexcept { (*static_cast<Logger*>(user))(line); };
    }
    Open(plain);
  }
  /// With the options and the callback of the C interface. Throws dk::Error.
  /// @param[in] options As there.
  template <int = 0>
  explicit Client(const dk_context_options& options) : context_(std::make_shared<detail::Context>()) {
    Open(options);
  }
  /// @return The context of the C interface, which stays this object's; null after this object was moved from.
  dk_context* get() const noexcept { return context_ ? context_->context.get() : nullptr; }

  /// Asks the server for the version of its protocol: dk_server_version().
  /// @param[in] limits As everywhere.
  /// @return The version, or the error.
  Result<int> server_version(const Limits& limits = {}) const {
    int version = 0;
    const detail::Call call(limits);
    const dk_code code = dk_server_version(get(), &version, call.get());
    return call.Give(code, version);
  }
  /// Ends the server, for every program of the user: dk_server_stop().
  /// @param[in] limits As everywhere.
  /// @return Nothing, or the error.
  Result<void> stop_server(const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_server_stop(get(), call.get()));
  }
  /// Lists the devices: dk_devices().
  /// @param[in] limits As everywhere.
  /// @return All devices in every state, or the error.
  Result<std::vector<DeviceInfo>> devices(const Limits& limits = {}) const {
    return Device::Collect<DeviceInfo, dk_device_info>(
        limits, [](const dk_device_info& info) { return DeviceInfo(info); },
        [&](auto on_device, void* user, const dk_call* call) {
          return dk_devices(get(), on_device, user, call);
        });
  }
  /// Opens a device: dk_device_open().
  /// @param[in] serial Empty takes the only device that is ready.
  /// @param[in] limits As everywhere.
  /// @return The device, or the error.
  Result<Device> open(const std::string& serial = "", const Limits& limits = {}) const {
    dk_device* device = nullptr;
    const detail::Call call(limits);
    const dk_code code = dk_device_open(get(), detail::TextOrNull(serial), &device, call.get());
    return call.Give(code, Device(device, context_));
  }
  /// Connects to a device over the network: dk_connect().
  /// @param[in] address,limits As there.
  /// @return Nothing, or the error.
  Result<void> connect(const std::string& address, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_connect(get(), address.c_str(), call.get()));
  }
  /// Ends such a connection: dk_disconnect().
  /// @param[in] address Empty: all of the network.
  /// @param[in] limits As everywhere.
  /// @return Nothing, or the error.
  Result<void> disconnect(const std::string& address, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_disconnect(get(), detail::TextOrNull(address), call.get()));
  }
  /// Pairs with a device over the network: dk_pair().
  /// @param[in] address,code,limits As there.
  /// @return Nothing, or the error.
  Result<void> pair(const std::string& address, const std::string& code, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_pair(get(), address.c_str(), code.c_str(), call.get()));
  }
  /// Reports what is attached, then each change: dk_watch_start().
  /// @param[in] on_change Called on a thread of the watch, must not throw; the info is null for changes of the server.
  /// @param[in] limits As everywhere.
  /// @return The running watch, or the error.
  Result<Watch> watch(std::function<void(dk_change, const DeviceInfo*)> on_change,
                      const Limits& limits = {}) const {
    Watch watch;
    watch.running_.owner = context_;
    watch.running_.receiver = std::make_unique<Watch::OnChange>(std::move(on_change));
    dk_watch* started = nullptr;
    const detail::Call call(limits);
    const dk_code code = dk_watch_start(
        get(),
        [](void* user, dk_change change, const dk_device_info* info) noexcept {
          const std::optional<DeviceInfo> copy =
              info == nullptr ? std::optional<DeviceInfo>() : DeviceInfo(*info);
          (*static_cast<Watch::OnChange*>(user))(change, copy ? &*copy : nullptr);
        },
        watch.running_.receiver.get(), &started, call.get());
    watch.running_.handle.reset(started);
    return call.Give(code, std::move(watch));
  }

 private:
  using Logger = std::function<void(std::string_view)>;

  void Open(const dk_context_options& options) {
    dk_context* context = nullptr;
    const detail::Call call({});
    const dk_code code = dk_context_new(&options, &context, call.get());
    context_->context.reset(context);
    call.Done(code).value();
  }

  std::shared_ptr<detail::Context> context_;
};

}  // namespace dk

#endif  // DAROKLEIM_CLIENT_HPP
