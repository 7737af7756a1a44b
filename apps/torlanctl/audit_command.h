#pragma once

#include <QStringList>

#include "audit/filter_t.h"
#include "base/result_t.h"

namespace torlan {

/// What "torlanctl audit" is asked for.
struct audit_call_t {
    audit::filter_t filter{};
    QString logs{};  ///< folder of the server's log; empty: logs in the data folder
    bool as_json = false;
};

/// Reads the words behind "audit"; @p _now in milliseconds since 1970. Pure.
base::result_of_t<audit_call_t> parse_audit_call(const QStringList& _arguments, qint64 _now);

/// Whether these words are a call.
base::result_t check_audit_call(const QStringList& _arguments);

/// Writes the lines that are asked for to standard output, the oldest first: of the server and of
/// the configuration server, current and former files. What cannot be read as a line is counted on
/// standard error.
base::result_t show_audit(const QString& _data, const QStringList& _arguments);

}  // namespace torlan
