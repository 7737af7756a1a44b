#pragma once

#include <QString>

namespace database::store {

/// The outcome of an operation on the store: ok, or one sentence that names the thing and the
/// place and that a person can be shown.
struct [[nodiscard]] result_t {
    QString error;  ///< empty: ok

    bool ok() const { return error.isEmpty(); }
    static result_t failed(const QString& _sentence) { return {_sentence}; }
};

}  // namespace database::store
