#include "live/change_feed_t.h"

#include "store/database_check.h"
#include "store/store_reader_t.h"
#include "store/transaction_t.h"

namespace database::live {

using ::base::result_t;
using store::transaction_t;

change_feed_t::change_feed_t(store::connection_t& _connection, database_t* _database,
                             realtime_writer_t* _realtime, write_gate_t* _gate,
                             const options_t& _options, QObject* _parent)
    : QObject(_parent),
      connection(_connection),
      database(_database),
      realtime(_realtime),
      options(_options),
      pacer(bulk_pacer_t::usual_gap, this),
      shower([this](const QString& _id) { announce_element(_id); }, _options.portion, this),
      model(_database, _realtime, _gate),
      log(_connection) {
    connect(&pacer, &bulk_pacer_t::due, this, &change_feed_t::announce_bulk);
    connect(&shower, &portions_t::over, this, &change_feed_t::on_portions_over);
}

change_feed_t::~change_feed_t() = default;

result_t change_feed_t::load() {
    installation::installation_t whole;
    if (const result_t result = read_whole(&whole); !result.is_ok()) {
        return result;
    }
    model.fill(whole, options.portion > 0 && whole.elements.size() > options.portion);
    // Only saves space: rows that stay because another program writes just now are not read again.
    static_cast<void>(log.prune(last_sequence));
    return {};
}

result_t change_feed_t::read_whole(installation::installation_t* _whole) {
    const transaction_t transaction(connection, transaction_t::kind_t::reading);
    store::store_reader_t reader(connection);
    const result_t result =
        transaction.begun().is_ok() ? reader.read_all(_whole) : transaction.begun();
    if (!result.is_ok()) {
        return result;
    }
    tell_notes(reader.notes());
    const ::base::result_of_t<qint64> newest = log.last_sequence();
    last_sequence = newest.value;
    return newest.is_ok() ? note_seen() : result_t(newest);
}

result_t change_feed_t::note_seen() {
    const ::base::result_of_t<qint64> newest = log.newest_ever();
    if (newest.is_ok()) {
        seen_sequence = newest.value;
    }
    return newest;
}

void change_feed_t::check_anew() {
    log.forget();
    check();
}

void change_feed_t::check() {
    const ::base::result_of_t<bool> written = database ? log.foreign_commit() : false;
    if (!written.is_ok()) {
        tell(written.error);
    }
    if (!written.value) {
        return;
    }
    const result_t result = incomplete ? reload() : catch_up();
    if (!result.is_ok()) {
        log.forget();
        // A table that was missing took its triggers with it: what was written since is nowhere
        // noted.
        incomplete = incomplete || !store::check_layout(connection).is_ok();
        tell(result.error);
        return;
    }
    failure.clear();
}

result_t change_feed_t::catch_up() {
    const qint64 before = last_sequence;
    model_changes_t changes;
    const result_t result = read_changes(&changes);
    if (result.is_ok() && last_sequence != before) {
        static_cast<void>(log.prune(last_sequence));
        announce(changes);
    }
    return result;
}

result_t change_feed_t::reload() {
    if (!database) {
        return {};
    }
    installation::installation_t whole;
    if (const result_t result = read_whole(&whole); !result.is_ok()) {
        return result;
    }
    incomplete = false;
    log.forget();
    // Newer than what the file says: they were answered, and wait for their save.
    const realtime_writer_t::pending_t pending = realtime->pending();
    const model_changes_t changes = model.fill(whole);
    if (const int lost = realtime->put_back(pending); lost > 0) {
        Q_EMIT failed(QStringLiteral("%1 values that were not saved yet are lost: the database has "
                                     "nothing of that name any more.")
                          .arg(lost));
    }
    announce(changes);
    return {};
}

void change_feed_t::tell_notes(const QStringList& _notes) {
    for (const QString& sentence : told_notes.fresh(_notes)) {
        Q_EMIT failed(sentence);
    }
}

void change_feed_t::tell(const QString& _failure) {
    if (std::exchange(failure, _failure) != _failure) {
        Q_EMIT failed(_failure);
    }
}

result_t change_feed_t::read_changes(model_changes_t* _changes) {
    transaction_t transaction(connection, transaction_t::kind_t::reading);
    return transaction.begun().is_ok() ? absorb(_changes) : transaction.begun();
}

result_t change_feed_t::absorb(model_changes_t* _changes) {
    const ::base::result_of_t<store::change_batch_t> rows = log.read(last_sequence);
    if (!rows.is_ok()) {
        return rows;
    }
    store::change_batch_t batch = rows.value;
    installation::installation_t part;
    store::store_reader_t reader(connection);
    result_t result = batch.everything ? reader.read_all(&part) : reader.read_batch(batch, &part);
    if (result.is_ok()) {
        result = note_seen();
    }
    if (!result.is_ok()) {
        return result;
    }
    tell_notes(reader.notes());
    last_sequence = batch.last_sequence;
    if (batch.everything) {
        *_changes = model.fill(part);
    } else {
        batch.drop_unnamed();
        *_changes = model.apply(batch, part);
        _changes->buses = batch.buses;
    }
    return {};
}

}  // namespace database::live
