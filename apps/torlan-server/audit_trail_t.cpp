#include "audit_trail_t.h"

#include <QDateTime>

#include "audit/access_entries.h"
#include "audit/broker_entry.h"
#include "audit/file_name.h"
#include "audit/operations.h"
#include "audit/request_entries.h"
#include "logs/log_line.h"

namespace torlan {

namespace {

using accounts::broker_account_t;
using database::live::grant_change_t;

constexpr const char* source = "apps/torlan-server/audit_trail_t";

qint64 now() {
    return QDateTime::currentMSecsSinceEpoch();
}

/// Of the server itself.
audit::entry_t moment_of(QLatin1String _operation) {
    audit::entry_t entry;
    entry.time = now();
    entry.operation = _operation;
    return entry;
}

audit::entry_t lost_events(qint64 _count) {
    audit::entry_t entry = moment_of(audit::operation::lost);
    entry.count = _count;
    entry.since = _count > 1 ? entry.time : 0;
    entry.detail = QStringLiteral("more happened at the broker's door than it could tell");
    return entry;
}

}  // namespace

audit_trail_t::audit_trail_t(QObject* _parent) : QObject(_parent) {}

audit_trail_t::~audit_trail_t() {
    close();
}

base::result_t audit_trail_t::open(const QString& _folder) {
    audit::audit_log_t::settings_t given;
    given.file.folder = _folder;
    given.file.name = audit::server_file;
    given.tell = [](const QString& _sentence) {
        utility::log_line(_sentence, 2, "tell", source, __LINE__);
    };
    auto opened = audit::audit_log_t::open(given);
    if (opened.is_ok()) {
        log = std::move(opened.value);
        log->note(moment_of(audit::operation::start));
    }
    return opened;
}

void audit_trail_t::close() {
    if (log) {
        log->note(moment_of(audit::operation::stop));
        log.reset();
    }
}

void audit_trail_t::follow(const account_keeper_t& _accounts,
                           const broker::broker_process_t& _broker) {
    connect(
        &_accounts, &account_keeper_t::happened, this,
        [this](const accounts::broker_event_t& _event) { log->note(audit::broker_entry(_event)); });
    connect(&_accounts, &account_keeper_t::users_read, this,
            [this](const QList<broker_account_t>& _before, const QList<broker_account_t>& _after) {
                for (const audit::entry_t& entry : audit::account_entries(_before, _after, now())) {
                    log->note(entry);
                }
            });
    connect(&_broker, &broker::broker_process_t::events_lost, this,
            [this](qint64 _count) { log->note(lost_events(_count)); });
}

void audit_trail_t::follow(const comunication::mqtt_endpoint_t& _endpoint,
                           const QString& _but_for) {
    // On the endpoint's thread, which only hands over what it has.
    connect(
        &_endpoint, &comunication::mqtt_endpoint_t::exchanged, this,
        [this, _but_for](const comunication::exchange_t& _exchange) {
            if (_exchange.levels.user != _but_for) {
                note_exchange(_exchange);
            }
        },
        Qt::DirectConnection);
}

void audit_trail_t::note_exchange(const comunication::exchange_t& _exchange) const {
    // What the gate turned away has room of its own: it comes faster than what drivers answer.
    const bool was_read = _exchange.bytes > 0;
    const QString room =
        _exchange.levels.user + (was_read ? QString() : QStringLiteral("/refused"));
    const comunication::exchange_t held = audit::without_answered_data(_exchange);
    log->note(room, held.bytes,
              [held, time = now()]() { return audit::request_entries(held, time); });
}

void audit_trail_t::follow(const database::live::change_feed_t& _feed) {
    connect(&_feed, &database::live::change_feed_t::grants_changed, this,
            [this](const QList<grant_change_t>& _changes) {
                const auto make = [_changes, time = now()]() {
                    QList<audit::entry_t> entries;
                    for (const grant_change_t& change : _changes) {
                        entries.append(audit::grant_entry(change, time));
                    }
                    return entries;
                };
                log->note(QStringLiteral("/grants"), 0, make);
            });
}

}  // namespace torlan
