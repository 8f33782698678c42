// What a call gives, or why it gives nothing.
#ifndef DAROKLEIM_BASE_RESULT_H
#define DAROKLEIM_BASE_RESULT_H

#include <cassert>
#include <optional>
#include <utility>
#include <variant>

namespace darokleim::base {

// A value or an error. Its constructors are implicit so that a function returns either as it is.
template <typename T, typename Error>
class [[nodiscard]] Result {
 public:
  // NOLINTNEXTLINE(google-explicit-constructor)
  Result(T value) : content_(std::in_place_index<0>, std::move(value)) {}
  // NOLINTNEXTLINE(google-explicit-constructor)
  Result(Error error) : content_(std::in_place_index<1>, std::move(error)) {}

  bool ok() const { return content_.index() == 0; }

  // Only of a result that is ok().
  T& operator*() & { return *Pointer(); }
  const T& operator*() const& { return *std::get_if<0>(&content_); }
  T&& operator*() && { return std::move(*Pointer()); }
  T* operator->() { return Pointer(); }
  const T* operator->() const { return std::get_if<0>(&content_); }

  // Only of a result that is not.
  const Error& error() const { return *std::get_if<1>(&content_); }
  Error TakeError() { return std::move(*std::get_if<1>(&content_)); }

 private:
  T* Pointer() {
    assert(ok());
    return std::get_if<0>(&content_);
  }

  std::variant<T, Error> content_;
};

// Success without a value, or an error.
template <typename Error>
class [[nodiscard]] Result<void, Error> {
 public:
  Result() = default;
  // NOLINTNEXTLINE(google-explicit-constructor)
  Result(Error error) : error_(std::move(error)) {}

  bool ok() const { return !error_; }
  const Error& error() const { return *error_; }
  Error TakeError() { return std::move(*error_); }

 private:
  std::optional<Error> error_;
};

}  // namespace darokleim::base

#endif  // DAROKLEIM_BASE_RESULT_H
