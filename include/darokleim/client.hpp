/// @file
/// @brief The client for C++17: values, objects that free themselves, errors as exceptions or as results.
///
/// Header only, over darokleim/client.h, which says what each call does on the device. Every call returns a
/// dk::Result; take its value with `.value()` and failures are thrown as dk::Error, or look at it and nothing is.
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
/// An exception that a callback throws ends the call and comes out of it.
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

namespace dk {

/// What went wrong: a copy of the library's dk_error.
class Error : public std::exception {
 public:
  explicit Error(dk_code code) : code_(code), message_(dk_code_name(code)) {}
  explicit Error(const dk_error& error)
      : code_(dk_error_code(&error)),
        message_(dk_error_message(&error)),
        path_(Text(dk_error_path(&error))),
        reason_(Text(dk_error_reason(&error))),
        words_(Text(dk_error_words(&error))),
        errno_(dk_error_errno(&error)),
        exit_status_(dk_error_exit_status(&error)),
        on_host_(dk_error_on_host(&error)) {}

  dk_code code() const noexcept { return code_; }
  const char* what() const noexcept override { return message_.c_str(); }
  const std::string& message() const noexcept { return message_; }
  const std::string& path() const noexcept { return path_; }
  const std::string& reason() const noexcept { return reason_; }
  const std::string& words() const noexcept { return words_; }
  int system_error() const noexcept { return errno_; }
  int exit_status() const noexcept { return exit_status_; }
  bool on_host() const noexcept { return on_host_; }

 private:
  static std::string Text(const char* text) { return text == nullptr ? std::string() : std::string(text); }

  dk_code code_;
  std::string message_, path_, reason_, words_;
  int errno_ = 0;
  int exit_status_ = -1;
  bool on_host_ = false;
};

/// A value or an error.
template <typename T>
class [[nodiscard]] Result {
 public:
  Result(T value) : state_(std::in_place_index<0>, std::move(value)) {}
  Result(Error error) : state_(std::in_place_index<1>, std::move(error)) {}

  bool ok() const noexcept { return state_.index() == 0; }
  explicit operator bool() const noexcept { return ok(); }
  dk_code code() const noexcept { return ok() ? DK_OK : std::get<1>(state_).code(); }
  const Error& error() const { return std::get<1>(state_); }

  /// Throws the error when there is no value.
  T& value() & {
    if (!ok()) throw std::get<1>(state_);
    return std::get<0>(state_);
  }
  /// By value, so that `for (… : phone.list(folder).value())` keeps what it runs over.
  T value() && {
    if (!ok()) throw std::get<1>(state_);
    return std::move(std::get<0>(state_));
  }
  T value_or(T other) && { return ok() ? std::move(std::get<0>(state_)) : std::move(other); }

 private:
  std::variant<T, Error> state_;
};

/// Done, or an error.
template <>
class [[nodiscard]] Result<void> {
 public:
  Result() = default;
  Result(Error error) : error_(std::move(error)) {}

  bool ok() const noexcept { return !error_; }
  explicit operator bool() const noexcept { return ok(); }
  dk_code code() const noexcept { return ok() ? DK_OK : error_->code(); }
  const Error& error() const { return *error_; }
  void value() const {
    if (error_) throw *error_;
  }

 private:
  std::optional<Error> error_;
};

/// Ends calls from another thread. Copies share the token.
class Cancel {
 public:
  Cancel() {
    dk_cancel* token = nullptr;
    if (dk_cancel_new(&token) != DK_OK) throw std::bad_alloc();
    token_.reset(token, dk_cancel_free);
  }
  void set() const noexcept { dk_cancel_set(token_.get()); }
  bool is_set() const noexcept { return dk_cancel_is_set(token_.get()); }
  void reset() const noexcept { dk_cancel_reset(token_.get()); }
  dk_cancel* get() const noexcept { return token_.get(); }

 private:
  std::shared_ptr<dk_cancel> token_;
};

/// What any call may be given last.
struct Limits {
  std::optional<Cancel> cancel = {};
  std::chrono::milliseconds timeout = {};  ///< 0: none
};

struct DeviceInfo {
  std::string serial;
  dk_state state = DK_STATE_UNKNOWN;
  std::string state_text;
  dk_link link = DK_LINK_UNKNOWN;
  std::string product, model, device, usb_path;
  std::uint64_t transport_id = 0;

  DeviceInfo() = default;
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

struct Entry {
  std::string path, name;
  dk_type type = DK_UNKNOWN_TYPE;
  std::uint32_t mode = 0;
  std::optional<std::uint64_t> size;
  std::int64_t mtime = 0;
  std::optional<std::string> link_target;

  Entry() = default;
  explicit Entry(const dk_entry& entry)
      : path(entry.path),
        name(entry.name),
        type(entry.type),
        mode(entry.mode),
        size(entry.size_known ? std::optional<std::uint64_t>(entry.size) : std::nullopt),
        mtime(entry.mtime),
        link_target(entry.link_target == nullptr ? std::optional<std::string>() : entry.link_target) {}
};

struct Output {
  std::string out, err;
  bool cut = false;
  int exit_status = 0;
};

struct Item {
  std::string source, target;
};

struct App {
  std::string package, version_name;
  std::int64_t version_code = -1;
  bool system = false;
  bool enabled = true;
  std::uint64_t size = 0;
  std::vector<std::string> apk_paths;

  App() = default;
  explicit App(const dk_app& app)
      : package(app.package),
        version_name(app.version_name),
        version_code(app.version_code),
        system(app.system),
        enabled(app.enabled),
        size(app.size),
        apk_paths(app.apk_paths, app.apk_paths + app.apk_count) {}
};

struct Volume {
  std::string path;
  bool internal = false;
  std::uint64_t total = 0, used = 0, free = 0;
};

namespace detail {

/// Holds what a C callback needs: the caller's function, and the exception it threw.
template <typename Function>
struct Guarded {
  Function function;
  std::exception_ptr thrown = nullptr;

  template <typename... Arguments>
  bool operator()(Arguments&&... arguments) noexcept {
    try {
      if constexpr (std::is_void_v<std::invoke_result_t<Function&, Arguments...>>) {
        function(std::forward<Arguments>(arguments)...);
        return true;
      } else {
        return static_cast<bool>(function(std::forward<Arguments>(arguments)...));
      }
    } catch (...) {
      thrown = std::current_exception();
      return false;
    }
  }
  void Rethrow() const {
    if (thrown) std::rethrow_exception(thrown);
  }
};

template <typename Function>
Guarded<std::decay_t<Function>> Guard(Function&& function) {
  return {std::forward<Function>(function)};
}

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
  Result<T> Give(dk_code code, T&& value) const {
    if (code == DK_OK) return std::forward<T>(value);
    return TakeError(code);
  }

 private:
  dk_error* error_ = nullptr;
  dk_call call_ = DK_CALL_INIT;
};

struct Free {
  void operator()(dk_context* context) const { dk_context_free(context); }
  void operator()(dk_device* device) const { dk_device_free(device); }
  void operator()(dk_watch* watch) const { dk_watch_stop(watch); }
  void operator()(dk_log* log) const { dk_log_stop(log); }
};

inline std::string TakeBytes(dk_bytes* bytes) {
  std::string text(bytes->data == nullptr ? "" : bytes->data, bytes->size);
  dk_bytes_free(bytes);
  return text;
}

inline std::vector<const char*> Pointers(const std::vector<std::string>& texts) {
  std::vector<const char*> pointers;
  pointers.reserve(texts.size());
  for (const std::string& text : texts) pointers.push_back(text.c_str());
  return pointers;
}

}  // namespace detail

/// A log of the phone that runs; stops when it goes out of scope.
class Log {
 public:
  void stop() { log_.reset(); }

 private:
  friend class Device;
  struct Receiver {
    std::function<void(const dk_log_record&)> on_record;
    std::function<void(dk_code, const Error*)> on_end;
  };
  std::unique_ptr<Receiver> receiver_;  // outlives the log, which is declared after it
  std::unique_ptr<dk_log, detail::Free> log_;
};

/// Device changes; stops when it goes out of scope.
class Watch {
 public:
  void stop() { watch_.reset(); }

 private:
  friend class Client;
  using OnChange = std::function<void(dk_change, const DeviceInfo*)>;
  std::unique_ptr<OnChange> on_change_;  // outlives the watch, which is declared after it
  std::unique_ptr<dk_watch, detail::Free> watch_;
};

/// One device. May be moved; calls may be made from any thread.
class Device {
 public:
  std::string serial() const { return dk_device_serial(device_.get()); }
  dk_device* get() const noexcept { return device_.get(); }

  Result<dk_state> state(const Limits& limits = {}) const {
    dk_state state = DK_STATE_UNKNOWN;
    const detail::Call call(limits);
    const dk_code code = dk_device_state(get(), &state, call.get());
    return call.Give(code, std::move(state));
  }
  Result<void> wait(dk_state state, const Limits& limits) const {
    const detail::Call call(limits);
    return call.Done(dk_device_wait(get(), state, call.get()));
  }
  /// mode: empty for Android.
  Result<void> reboot(const std::string& mode = "", const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_device_reboot(get(), mode.empty() ? nullptr : mode.c_str(), call.get()));
  }
  Result<void> reconnect(const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_device_reconnect(get(), call.get()));
  }

  Result<Entry> stat(const std::string& path, dk_follow follow = DK_FOLLOW, const Limits& limits = {}) const {
    dk_entry* found = nullptr;
    const detail::Call call(limits);
    const dk_code code = dk_stat(get(), path.c_str(), follow, &found, call.get());
    const std::unique_ptr<dk_entry, void (*)(dk_entry*)> owner(found, dk_entry_free);
    return call.Give(code, found == nullptr ? Entry() : Entry(*found));
  }
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
  /// on_entry: bool(const dk_entry&), as entries arrive; false ends the listing with ::DK_STOPPED.
  template <typename OnEntry>
  Result<void> list(const std::string& folder, OnEntry&& on_entry, const Limits& limits = {}) const {
    auto guarded = detail::Guard(std::forward<OnEntry>(on_entry));
    const detail::Call call(limits);
    const dk_code code =
        dk_list(get(), folder.c_str(), &Pass<decltype(guarded), dk_entry>, &guarded, call.get());
    guarded.Rethrow();
    return call.Done(code);
  }
  template <typename OnEntry>
  Result<void> walk(const std::string& folder, const dk_walk_options& options, OnEntry&& on_entry,
                    const Limits& limits = {}) const {
    auto guarded = detail::Guard(std::forward<OnEntry>(on_entry));
    const detail::Call call(limits);
    const dk_code code =
        dk_walk(get(), folder.c_str(), &options, &Pass<decltype(guarded), dk_entry>, &guarded, call.get());
    guarded.Rethrow();
    return call.Done(code);
  }
  /// length 0: all there is.
  Result<std::string> read(const std::string& path, std::uint64_t offset = 0, std::uint64_t length = 0,
                           const Limits& limits = {}) const {
    std::string content;
    auto guarded = detail::Guard([&](const char* data, std::size_t size) {
      content.append(data, size);
      return true;
    });
    const detail::Call call(limits);
    const dk_code code =
        dk_read(get(), path.c_str(), offset, length, &PassBytes<decltype(guarded)>, &guarded, call.get());
    guarded.Rethrow();
    return call.Give(code, std::move(content));
  }
  Result<void> write(const std::string& path, std::string_view content, std::uint32_t mode = 0644,
                     bool replace = false, const Limits& limits = {}) const {
    const auto source = [](void* user, char* buffer, std::size_t capacity) -> std::int64_t {
      auto& rest = *static_cast<std::string_view*>(user);
      const std::size_t count = rest.copy(buffer, capacity);
      rest.remove_prefix(count);
      return static_cast<std::int64_t>(count);
    };
    const detail::Call call(limits);
    return call.Done(dk_write(get(), path.c_str(), mode, 0, replace, source, &content, call.get()));
  }
  Result<void> make_folder(const std::string& path, bool parents = false, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_make_folder(get(), path.c_str(), parents, call.get()));
  }
  Result<void> remove(const std::string& path, bool recursive = false, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_remove(get(), path.c_str(), recursive, call.get()));
  }
  Result<void> move(const std::string& from, const std::string& to, bool replace = false,
                    const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_move(get(), from.c_str(), to.c_str(), replace, call.get()));
  }
  Result<void> copy(const std::string& from, const std::string& to, bool replace = false,
                    const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_copy(get(), from.c_str(), to.c_str(), replace, call.get()));
  }
  Result<void> chmod(const std::string& path, std::uint32_t mode, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_chmod(get(), path.c_str(), mode, call.get()));
  }

  /// options: what is to be done with existing files, and callbacks as in C.
  Result<dk_summary> push(const std::vector<Item>& items, const dk_transfer_options& options,
                          const Limits& limits = {}) const {
    return Transfer(dk_push, items, options, limits);
  }
  Result<dk_summary> pull(const std::vector<Item>& items, const dk_transfer_options& options,
                          const Limits& limits = {}) const {
    return Transfer(dk_pull, items, options, limits);
  }

  /// The phone's program gets the arguments as they are; no shell reads them.
  Result<Output> run(const std::vector<std::string>& arguments, const Limits& limits = {}) const {
    const auto pointers = detail::Pointers(arguments);
    dk_output output = {};
    const detail::Call call(limits);
    return TakeOutput(call, dk_run(get(), pointers.data(), pointers.size(), nullptr, &output, call.get()),
                      &output);
  }
  Result<Output> run_script(const std::string& script, const Limits& limits = {}) const {
    dk_output output = {};
    const detail::Call call(limits);
    return TakeOutput(call, dk_run_script(get(), script.c_str(), nullptr, &output, call.get()), &output);
  }

  Result<std::vector<App>> apps(dk_app_set set = DK_ALL_APPS, bool sizes = false,
                                const Limits& limits = {}) const {
    std::vector<App> found;
    auto guarded = detail::Guard([&](const dk_app& app) {
      found.emplace_back(app);
      return true;
    });
    const detail::Call call(limits);
    const dk_code code = dk_apps(get(), set, sizes, &Pass<decltype(guarded), dk_app>, &guarded, call.get());
    guarded.Rethrow();
    return call.Give(code, std::move(found));
  }
  Result<App> app(const std::string& package, const Limits& limits = {}) const {
    dk_app* found = nullptr;
    const detail::Call call(limits);
    const dk_code code = dk_app_get(get(), package.c_str(), &found, call.get());
    const std::unique_ptr<dk_app, void (*)(dk_app*)> owner(found, dk_app_free);
    return call.Give(code, found == nullptr ? App() : App(*found));
  }
  Result<void> install(const std::vector<std::string>& apk_paths, const dk_install_options& options,
                       const Limits& limits = {}) const {
    const auto pointers = detail::Pointers(apk_paths);
    const detail::Call call(limits);
    return call.Done(dk_app_install(get(), pointers.data(), pointers.size(), &options, call.get()));
  }
  Result<void> uninstall(const std::string& package, bool keep_data = false,
                         const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_app_uninstall(get(), package.c_str(), keep_data, call.get()));
  }
  /// activity: empty starts what the launcher would.
  Result<void> start(const std::string& package, const std::string& activity = "",
                     const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(
        dk_app_start(get(), package.c_str(), activity.empty() ? nullptr : activity.c_str(), call.get()));
  }
  Result<void> stop(const std::string& package, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_app_stop(get(), package.c_str(), call.get()));
  }
  Result<void> clear(const std::string& package, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_app_clear(get(), package.c_str(), call.get()));
  }

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
  Result<dk_battery> battery(const Limits& limits = {}) const {
    return Fact<dk_battery>(dk_battery_get, limits);
  }
  Result<dk_screen> screen(const Limits& limits = {}) const { return Fact<dk_screen>(dk_screen_get, limits); }
  Result<dk_memory> memory(const Limits& limits = {}) const { return Fact<dk_memory>(dk_memory_get, limits); }
  Result<std::vector<Volume>> volumes(const Limits& limits = {}) const {
    std::vector<Volume> found;
    auto guarded = detail::Guard([&](const dk_volume& volume) {
      found.push_back({volume.path, volume.internal, volume.total, volume.used, volume.free});
      return true;
    });
    const detail::Call call(limits);
    const dk_code code = dk_volumes(get(), &Pass<decltype(guarded), dk_volume>, &guarded, call.get());
    guarded.Rethrow();
    return call.Give(code, std::move(found));
  }

  /// The bytes of a PNG.
  Result<std::string> screenshot(const Limits& limits = {}) const {
    dk_bytes png = {};
    const detail::Call call(limits);
    const dk_code code = dk_screenshot(get(), &png, call.get());
    return call.Give(code, detail::TakeBytes(&png));
  }
  Result<void> type_text(const std::string& text, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_type_text(get(), text.c_str(), call.get()));
  }
  Result<void> press_key(const std::string& key, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_press_key(get(), key.c_str(), call.get()));
  }
  Result<void> tap(int x, int y, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_tap(get(), x, y, call.get()));
  }

  /// Both are called on a thread of the log; on_end once, last, with a null error when it ended as asked.
  Result<Log> log(const dk_log_options& options, std::function<void(const dk_log_record&)> on_record,
                  std::function<void(dk_code, const Error*)> on_end = nullptr,
                  const Limits& limits = {}) const {
    Log log;
    log.receiver_ = std::make_unique<Log::Receiver>(Log::Receiver{std::move(on_record), std::move(on_end)});
    dk_log* started = nullptr;
    const detail::Call call(limits);
    const dk_code code = dk_log_start(
        get(), &options,
        [](void* user, const dk_log_record* record) {
          static_cast<Log::Receiver*>(user)->on_record(*record);
        },
        [](void* user, dk_code end, const dk_error* error) {
          const auto& ended = static_cast<Log::Receiver*>(user)->on_end;
          const std::optional<Error> copy = error == nullptr ? std::optional<Error>() : Error(*error);
          if (ended) ended(end, copy ? &*copy : nullptr);
        },
        log.receiver_.get(), &started, call.get());
    log.log_.reset(started);
    return call.Give(code, std::move(log));
  }
  Result<void> clear_log(const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_log_clear(get(), call.get()));
  }

  /// Returns the port that this computer listens on, for `tcp:0` the one that the server chose.
  Result<int> forward(const std::string& from, const std::string& to, bool replace = false,
                      const Limits& limits = {}) const {
    int port = 0;
    const detail::Call call(limits);
    const dk_code code = dk_forward_add(get(), from.c_str(), to.c_str(), replace, &port, call.get());
    return call.Give(code, std::move(port));
  }
  /// from: empty removes all of this device.
  Result<void> remove_forward(const std::string& from, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_forward_remove(get(), from.empty() ? nullptr : from.c_str(), call.get()));
  }
  Result<int> reverse(const std::string& from, const std::string& to, bool replace = false,
                      const Limits& limits = {}) const {
    int port = 0;
    const detail::Call call(limits);
    const dk_code code = dk_reverse_add(get(), from.c_str(), to.c_str(), replace, &port, call.get());
    return call.Give(code, std::move(port));
  }
  Result<void> remove_reverse(const std::string& from, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_reverse_remove(get(), from.empty() ? nullptr : from.c_str(), call.get()));
  }

 private:
  friend class Client;
  explicit Device(dk_device* device) : device_(device) {}

  template <typename Guarded, typename Value>
  static bool Pass(void* user, const Value* value) {
    return (*static_cast<Guarded*>(user))(*value);
  }
  template <typename Guarded>
  static bool PassBytes(void* user, const char* data, std::size_t size) {
    return (*static_cast<Guarded*>(user))(data, size);
  }
  template <typename Value>
  Result<Value> Fact(dk_code (*ask)(dk_device*, Value*, const dk_call*), const Limits& limits) const {
    Value value = {};
    const detail::Call call(limits);
    const dk_code code = ask(get(), &value, call.get());
    return call.Give(code, std::move(value));
  }
  template <typename Function>
  Result<dk_summary> Transfer(Function function, const std::vector<Item>& items,
                              const dk_transfer_options& options, const Limits& limits) const {
    std::vector<dk_item> plain;
    plain.reserve(items.size());
    for (const Item& item : items) plain.push_back({item.source.c_str(), item.target.c_str()});
    dk_summary summary = {};
    const detail::Call call(limits);
    const dk_code code = function(get(), plain.data(), plain.size(), &options, &summary, call.get());
    return call.Give(code, std::move(summary));
  }
  static Result<Output> TakeOutput(const detail::Call& call, dk_code code, dk_output* output) {
    Output taken{detail::TakeBytes(&output->out), detail::TakeBytes(&output->err), output->cut,
                 output->exit_status};
    return call.Give(code, std::move(taken));
  }

  std::unique_ptr<dk_device, detail::Free> device_;
};

/// A context: where the adb server is. Devices, watches and logs made from it must go before it.
class Client {
 public:
  /// Throws dk::Error. options as in C.
  explicit Client(const dk_context_options& options = DK_CONTEXT_OPTIONS_INIT) {
    dk_context* context = nullptr;
    const detail::Call call({});
    const dk_code code = dk_context_new(&options, &context, call.get());
    context_.reset(context);
    call.Done(code).value();
  }
  dk_context* get() const noexcept { return context_.get(); }

  Result<int> server_version(const Limits& limits = {}) const {
    int version = 0;
    const detail::Call call(limits);
    const dk_code code = dk_server_version(get(), &version, call.get());
    return call.Give(code, std::move(version));
  }
  Result<std::vector<DeviceInfo>> devices(const Limits& limits = {}) const {
    std::vector<DeviceInfo> found;
    auto guarded = detail::Guard([&](const dk_device_info& info) {
      found.emplace_back(info);
      return true;
    });
    const detail::Call call(limits);
    const dk_code code =
        dk_devices(get(), &Device::Pass<decltype(guarded), dk_device_info>, &guarded, call.get());
    guarded.Rethrow();
    return call.Give(code, std::move(found));
  }
  /// serial: empty takes the only device that is ready.
  Result<Device> open(const std::string& serial = "", const Limits& limits = {}) const {
    dk_device* device = nullptr;
    const detail::Call call(limits);
    const dk_code code =
        dk_device_open(get(), serial.empty() ? nullptr : serial.c_str(), &device, call.get());
    return call.Give(code, Device(device));
  }
  Result<void> connect(const std::string& address, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_connect(get(), address.c_str(), call.get()));
  }
  Result<void> disconnect(const std::string& address, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_disconnect(get(), address.empty() ? nullptr : address.c_str(), call.get()));
  }
  Result<void> pair(const std::string& address, const std::string& code, const Limits& limits = {}) const {
    const detail::Call call(limits);
    return call.Done(dk_pair(get(), address.c_str(), code.c_str(), call.get()));
  }
  /// on_change is called on a thread of the watch; the info is null for changes of the server.
  Result<Watch> watch(std::function<void(dk_change, const DeviceInfo*)> on_change,
                      const Limits& limits = {}) const {
    Watch watch;
    watch.on_change_ = std::make_unique<Watch::OnChange>(std::move(on_change));
    dk_watch* started = nullptr;
    const detail::Call call(limits);
    const dk_code code = dk_watch_start(
        get(),
        [](void* user, dk_change change, const dk_device_info* info) {
          const std::optional<DeviceInfo> copy =
              info == nullptr ? std::optional<DeviceInfo>() : DeviceInfo(*info);
          (*static_cast<Watch::OnChange*>(user))(change, copy ? &*copy : nullptr);
        },
        watch.on_change_.get(), &started, call.get());
    watch.watch_.reset(started);
    return call.Give(code, std::move(watch));
  }

 private:
  std::unique_ptr<dk_context, detail::Free> context_;
};

}  // namespace dk

#endif  // DAROKLEIM_CLIENT_HPP
