#pragma once

#include "util/Error.h"

#include <utility>
#include <variant>

namespace halvane::util {

/// A value or the error that kept it from being made. Asking for the side that is not there is
/// a bug of the caller and throws std::bad_variant_access.
template <typename T>
class [[nodiscard]] Result {
public:
    Result(T value) : state_(std::in_place_index<0>, std::move(value)) {}
    Result(Error error) : state_(std::in_place_index<1>, std::move(error)) {}

    [[nodiscard]] bool ok() const { return state_.index() == 0; }
    explicit operator bool() const { return ok(); }

    [[nodiscard]] const T& value() const& { return std::get<0>(state_); }
    [[nodiscard]] T& value() & { return std::get<0>(state_); }
    [[nodiscard]] T&& value() && { return std::get<0>(std::move(state_)); }
    [[nodiscard]] const T& operator*() const& { return value(); }
    [[nodiscard]] T& operator*() & { return value(); }
    [[nodiscard]] T&& operator*() && { return std::move(*this).value(); }
    const T* operator->() const { return &value(); }
    T* operator->() { return &value(); }

    [[nodiscard]] const Error& error() const& { return std::get<1>(state_); }
    [[nodiscard]] Error&& error() && { return std::get<1>(std::move(state_)); }

private:
    std::variant<T, Error> state_;
};

template <>
class [[nodiscard]] Result<void> {
public:
    Result() = default;
    Result(Error error) : state_(std::move(error)) {}

    [[nodiscard]] bool ok() const { return state_.index() == 0; }
    explicit operator bool() const { return ok(); }
    [[nodiscard]] const Error& error() const { return std::get<Error>(state_); }

private:
    std::variant<std::monostate, Error> state_;
};

}  // namespace halvane::util
