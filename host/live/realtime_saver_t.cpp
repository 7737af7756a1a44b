#include "live/realtime_saver_t.h"

#include <utility>

#include "store/store_writer_t.h"
#include "store/transaction_t.h"

namespace database::live {

using ::base::result_t;
using store::transaction_t;

realtime_saver_t::realtime_saver_t(store::connection_t& _connection, database_t* _database,
                                   realtime_writer_t* _realtime, change_feed_t* _feed,
                                   int _delay_ms, int _iterations, QObject* _parent)
    : QObject(_parent),
      connection(_connection),
      database(_database),
      realtime(_realtime),
      feed(_feed),
      iterations(_iterations) {
    delay.setSingleShot(true);
    delay.setInterval(_delay_ms);
    connect(&delay, &QTimer::timeout, this, &realtime_saver_t::on_timeout);
    connect(realtime, &realtime_writer_t::unsaved, this, &realtime_saver_t::on_unsaved);
}

realtime_saver_t::~realtime_saver_t() = default;

void realtime_saver_t::on_unsaved() {
    if (!delay.isActive()) {
        restarts = 0;
        delay.start();
    } else if (restarts < iterations) {
        ++restarts;
        delay.start();
    }
}

void realtime_saver_t::on_timeout() {
    const result_t result = save();
    if (!result.is_ok()) {
        if (std::exchange(failure, result.error) != result.error) {
            Q_EMIT failed(QStringLiteral("Values cannot be saved: ") + result.error);
        }
        delay.start();
    }
}

result_t realtime_saver_t::save() {
    if (!database || (realtime->unsaved_items().empty() && realtime->unsaved_scenarios().empty())) {
        return {};
    }
    if (const result_t place = connection.check_place(); !place.is_ok()) {
        return place;
    }
    model_changes_t foreign;
    result_t result;
    {
        transaction_t transaction(connection, transaction_t::kind_t::writing);
        result = transaction.begun();
        if (result.is_ok()) {
            // What others wrote before us is newer than what we are about to overwrite.
            result = feed->absorb(&foreign);
        }
        if (result.is_ok()) {
            result = write_values();
        }
        if (result.is_ok()) {
            result = connection.check_place();
        }
        if (result.is_ok()) {
            result = transaction.commit();
        }
    }
    if (result.is_ok()) {
        realtime->clear_unsaved();
        failure.clear();
        delay.stop();
    }
    feed->announce(foreign);
    return result;
}

result_t realtime_saver_t::write_values() {
    result_t result;
    const realtime::realtime_t* side = database->getRealtime();
    for (const QString& id : realtime->unsaved_items()) {
        if (result.is_ok()) {
            result =
                connection.run(QStringLiteral("UPDATE items SET value = ? WHERE id = ?"),
                               {store::text_value(side->getItems()->list(id)->getValue()), id});
        }
    }
    for (const QString& id : realtime->unsaved_scenarios()) {
        if (result.is_ok()) {
            result =
                connection.run(QStringLiteral("UPDATE scenarios SET execution = ? WHERE id = ?"),
                               {int(side->getScenary()->list(id)->getExecution()), id});
        }
    }
    // Under the write lock all other rows have been applied: what is left are our own.
    return result.is_ok() ? store::change_log_t(connection).clear() : result;
}

}  // namespace database::live
