#include "audit/broker_entry.h"

#include <QHash>

#include "audit/operations.h"

namespace audit {

namespace {

struct meaning_t {
    QLatin1String operation;
    QLatin1String result;
};

/// A kind that is new here is told as it is.
const QHash<QString, meaning_t>& meanings() {
    static const QHash<QString, meaning_t> table{
        {QStringLiteral("signed-in"), {operation::sign_in, result::ok}},
        {QStringLiteral("departed"), {operation::departure, result::ok}},
        {QStringLiteral("failed"), {operation::sign_in, QLatin1String("failed")}},
        {QStringLiteral("unchecked"), {operation::sign_in, QLatin1String("unchecked")}},
        {QStringLiteral("refused"), {operation::sign_in, result::refused}},
        {QStringLiteral("write-refused"), {operation::publish, result::refused}},
        {QStringLiteral("subscribe-refused"), {operation::subscribe, result::refused}},
        {QStringLiteral("flooding"), {operation::publish, QLatin1String("flooding")}},
    };
    return table;
}

}  // namespace

entry_t broker_entry(const accounts::broker_event_t& _event) {
    entry_t entry;
    entry.time = _event.last * 1'000;
    entry.since = _event.count > 1 ? _event.first * 1'000 : 0;
    entry.count = _event.count;
    entry.user = _event.user;
    entry.client = _event.client;
    entry.address = _event.address;
    entry.detail = _event.detail;
    const auto meaning = meanings().constFind(_event.kind);
    if (meaning == meanings().constEnd()) {
        entry.operation = _event.kind;
    } else {
        entry.operation = meaning->operation;
        entry.result = meaning->result;
    }
    return entry;
}

}  // namespace audit
