#pragma once

#include <QString>
#include <utility>

namespace base {

/// The outcome of an operation: ok, or one sentence that names the thing and the place and that a
/// person can be shown. Holds no secret.
struct [[nodiscard]] result_t {
    QString error;  ///< empty: ok

    bool is_ok() const { return error.isEmpty(); }
    static result_t failed(QString _sentence) { return {std::move(_sentence)}; }
};

/// The same for an operation that yields something: the value, or why there is none. No kind of
/// result_t: "ok ? of_value : failure" would then be a result_t and lose the value unseen.
template <class value_t>
struct [[nodiscard]] result_of_t {
    QString error;    ///< empty: ok
    value_t value{};  ///< as constructed without arguments after a failure

    bool is_ok() const { return error.isEmpty(); }

    // Implicit, so that an operation returns what it has, the value or a failure, and hands a
    // failure on.
    // NOLINTNEXTLINE(google-explicit-constructor)
    result_of_t(value_t _value) : value(std::move(_value)) {}
    // NOLINTNEXTLINE(google-explicit-constructor)
    result_of_t(result_t _failure) : error(std::move(_failure.error)) { Q_ASSERT(!is_ok()); }
    template <class other_t>
    // NOLINTNEXTLINE(google-explicit-constructor)
    result_of_t(const result_of_t<other_t>& _failure) : result_of_t(result_t{_failure.error}) {}
    // NOLINTNEXTLINE(google-explicit-constructor)
    operator result_t() const { return {error}; }
};

}  // namespace base
