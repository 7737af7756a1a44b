#include "live/live_database_t.h"

#include "store/open_database.h"
#include "store/store_reader_t.h"

namespace database::live {

using ::base::result_t;

namespace {

// While the server runs it tries again later rather than let its event loop wait for a writer.
constexpr int busy_ms = 50;

}  // namespace

live_database_t::live_database_t(database_t* _database, const options_t& _options, QObject* _parent)
    : QObject(_parent),
      options(_options),
      realtime(_database),
      requests(_database),
      changes(connection, _database, &realtime, &requests, _options.bulk_limit),
      saver(connection, _database, &realtime, &changes, _options.save_delay_ms,
            _options.save_iterations) {
    connect(&changes, &change_feed_t::failed, this, &live_database_t::failed);
    connect(&saver, &realtime_saver_t::failed, this, &live_database_t::failed);
}

live_database_t::~live_database_t() {
    if (watch != nullptr) {
        // Nobody is left to tell; the host calls flush() itself when it wants to know.
        static_cast<void>(flush());
    }
}

result_t live_database_t::open(const QString& _path) {
    const auto opened = store::open_database(connection, _path, 5000);
    changes.tell_notes(opened.value);
    result_t result = opened;
    if (result.is_ok()) {
        result = changes.load();
    }
    if (result.is_ok()) {
        result = connection.run(QStringLiteral("PRAGMA busy_timeout = %1").arg(busy_ms));
    }
    if (result.is_ok()) {
        watch = new wal_watch_t(_path, options.poll_ms, this);
        connect(watch, &wal_watch_t::woken, &changes, &change_feed_t::check);
    }
    return result;
}

result_t live_database_t::flush() {
    static_cast<void>(connection.run(QStringLiteral("PRAGMA busy_timeout = 5000")));
    result_t result = saver.save();
    static_cast<void>(connection.run(QStringLiteral("PRAGMA busy_timeout = %1").arg(busy_ms)));
    return result;
}

::base::result_of_t<QMap<QString, installation::user_t>> live_database_t::read_users() {
    installation::installation_t part;
    store::store_reader_t reader(connection);
    const result_t result = reader.read_accounts(&part);
    if (!result.is_ok()) {
        return result;
    }
    changes.tell_notes(reader.notes());
    return part.users;
}

::base::result_of_t<installation::installation_t> live_database_t::read_bus_data() {
    installation::installation_t part;
    store::store_reader_t reader(connection);
    const result_t result = reader.read_buses(&part);
    if (!result.is_ok()) {
        return result;
    }
    changes.tell_notes(reader.notes());
    return part;
}

}  // namespace database::live
