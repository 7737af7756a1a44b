#pragma once

#include <QString>

namespace broker {

/// Whether something went well; if not, one sentence for the user, without secrets.
struct broker_result_t {
    QString error;  ///< empty: it went well

    bool is_ok() const { return error.isEmpty(); }
};

}  // namespace broker
