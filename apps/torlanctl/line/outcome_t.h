#pragma once

#include <utility>

#include "base/result_t.h"
#include "program/exit_status_t.h"

namespace torlan {

/// How a command ended: the program's status, and one sentence unless it is done.
struct [[nodiscard]] outcome_t {
    exit_status_t status = status_done;
    QString error{};

    outcome_t() = default;
    outcome_t(exit_status_t _status, QString _sentence)
        : status(_status), error(std::move(_sentence)) {}
    // Implicit: most commands are done or refused, nothing else.
    // NOLINTNEXTLINE(google-explicit-constructor)
    outcome_t(const base::result_t& _result)
        : status(_result.is_ok() ? status_done : status_failed), error(_result.error) {}
    template <class value_t>
    // NOLINTNEXTLINE(google-explicit-constructor)
    outcome_t(const base::result_of_t<value_t>& _result) : outcome_t(base::result_t(_result)) {}
};

}  // namespace torlan
