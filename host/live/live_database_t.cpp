#include "live/live_database_t.h"

#include <utility>

#include "store/database_check.h"
#include "store/open_database.h"
#include "store/store_reader_t.h"

namespace database::live {

using ::base::result_t;

namespace {

// While the server runs it tries again later rather than let its event loop wait for a writer.
constexpr int busy_ms = 50;
constexpr int opening_ms = 5000;
constexpr int taking_over_ms = 500;

}  // namespace

live_database_t::live_database_t(database_t* _database, const options_t& _options, QObject* _parent)
    : QObject(_parent),
      options(_options),
      realtime(_database),
      requests(_database),
      changes(connection, _database, &realtime, &requests, {_options.bulk_limit, _options.portion}),
      saver(connection, _database, &realtime, &changes, _options.save_delay_ms,
            _options.save_iterations),
      keeper(connection) {
    connect(&changes, &change_feed_t::failed, this, &live_database_t::failed);
    connect(&saver, &realtime_saver_t::failed, this, &live_database_t::failed);
}

live_database_t::~live_database_t() {
    // Nobody is left to tell; the host calls close() itself because it wants to know.
    static_cast<void>(close());
}

result_t live_database_t::open(const QString& _path) {
    path = _path;
    const auto opened = store::open_database(connection, path, opening_ms);
    changes.tell_notes(opened.value);
    result_t result = opened;
    if (result.is_ok()) {
        result = changes.load();
    }
    if (result.is_ok()) {
        result = begin_to_follow();
    }
    if (result.is_ok()) {
        watch = new wal_watch_t(path, options.poll_ms, this);
        connect(watch, &wal_watch_t::woken, this, &live_database_t::on_woken);
        connect(watch, &wal_watch_t::polled, this, &live_database_t::on_polled);
    }
    return result;
}

result_t live_database_t::begin_to_follow() {
    logs.emplace(path);
    // What is saved here was answered before; what others commit to the file stays as it is.
    const result_t lazily = connection.run(QStringLiteral("PRAGMA synchronous = NORMAL"));
    return lazily.is_ok() ? connection.run(QStringLiteral("PRAGMA busy_timeout = %1").arg(busy_ms))
                          : lazily;
}

void live_database_t::on_woken() {
    const result_t place = connection.check_place();
    if (place.is_ok()) {
        failure.clear();
        changes.check();
    } else if (failure.isEmpty()) {
        leave(place);
    }
}

// Not whenever the folder changes: looking at the file changes it.
void live_database_t::on_polled() {
    if (const result_t place = connection.check_place(); !place.is_ok()) {
        leave(place);
    }
    keeper.look(busy_ms);
}

void live_database_t::leave(const result_t& _place) {
    const result_t taken = take_over();
    const QString sentence = _place.error + QLatin1Char(' ') +
                             (taken.is_ok() ? QStringLiteral("That was read anew.") : taken.error);
    if (std::exchange(failure, sentence) != sentence) {
        Q_EMIT failed(sentence);
    }
    if (taken.is_ok()) {
        failure.clear();
    }
}

result_t live_database_t::take_over() {
    const auto there = store::is_ready_to_open(path, busy_ms);
    if (!there.is_ok()) {
        return there;
    }
    if (!there.value) {
        return result_t::failed(
            QStringLiteral("Nothing is saved until an installation is in its place."));
    }
    connection.close();
    if (logs) {
        logs->remove();
        logs.reset();
    }
    const auto opened = store::open_database(connection, path, taking_over_ms);
    changes.tell_notes(opened.value);
    result_t result = opened;
    if (result.is_ok()) {
        result = begin_to_follow();
    }
    if (result.is_ok()) {
        result = changes.reload();
    }
    if (!result.is_ok()) {
        connection.close();  // not in place, so that it is tried again
    }
    return result;
}

result_t live_database_t::close() {
    if (watch == nullptr) {
        return {};
    }
    delete std::exchange(watch, nullptr);
    on_polled();
    for (const QLatin1String pragma : {QLatin1String("PRAGMA busy_timeout = 5000"),
                                       QLatin1String("PRAGMA synchronous = FULL")}) {
        static_cast<void>(connection.run(pragma));
    }
    const result_t saved = saver.save();
    const auto lost = realtime.unsaved_items().size() + realtime.unsaved_scenarios().size();
    connection.close();
    return saved.is_ok() ? saved
                         : result_t::failed(QStringLiteral("%1 values are not saved and lost: %2")
                                                .arg(lost)
                                                .arg(saved.error));
}

QString live_database_t::lag(const store::change_mark_t& _mark) {
    if (connection.file() != _mark.file) {
        return failure.isEmpty()
                   ? QStringLiteral("the server has another database open in its place.")
                   : failure;
    }
    if (changes.seen() < _mark.sequence) {
        changes.check_anew();
    }
    if (changes.seen() < _mark.sequence) {
        return changes.last_failure().isEmpty() ? QStringLiteral("the server has not read it.")
                                                : changes.last_failure();
    }
    return changes.is_announced() ? QString() : taking_over();
}

QString live_database_t::taking_over() {
    return QStringLiteral("the server still takes over a large change.");
}

::base::result_of_t<QMap<QString, installation::user_t>> live_database_t::read_users() {
    installation::installation_t part;
    store::store_reader_t reader(connection);
    const result_t result = reader.read_accounts(&part);
    if (!result.is_ok()) {
        return result;
    }
    changes.tell_notes(reader.notes());
    part.users.removeIf([this](const auto& _user) {
        return changes.held_back().count(_user.value().username) > 0;
    });
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
