#pragma once

#include "audit/filter_t.h"
#include "base/result_t.h"
#include "line/call_t.h"

namespace torlan {

/// What "torlanctl audit" is asked for.
struct audit_call_t {
    audit::filter_t filter{};
    QString logs{};  ///< folder of the server's log; empty: logs in the data folder
    bool as_json = false;
};

/// Reads its options; @p _now in milliseconds since 1970. Pure.
base::result_of_t<audit_call_t> read_audit_call(const call_t& _typed, qint64 _now);

}  // namespace torlan
