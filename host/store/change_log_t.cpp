#include "store/change_log_t.h"

#include <QSqlQuery>

namespace database::store {

using ::base::result_t;

namespace {

void add(const QString& _tab, const QString& _key, change_batch_t* _batch) {
    if (_tab == QLatin1String("elements")) {
        _batch->elements.insert(_key);
    } else if (_tab == QLatin1String("items")) {
        _batch->items.insert(_key);
    } else if (_tab == QLatin1String("limits")) {
        _batch->limits.insert(_key);
    } else if (_tab == QLatin1String("knx")) {
        _batch->buses = true;
    } else if (_tab == QLatin1String("scenarios")) {
        _batch->scenarios.insert(_key);
    } else if (_tab == QLatin1String("thermostats")) {
        _batch->thermostats.insert(_key);
    } else if (_tab == QLatin1String("users")) {
        _batch->users.insert(_key);
        _batch->accounts = true;
    } else if (_tab == QLatin1String("passwords")) {
        _batch->accounts = true;
    } else if (_tab == QLatin1String("meta")) {
        _batch->topic = true;
    } else {
        _batch->everything = true;
    }
}

}  // namespace

::base::result_of_t<bool> change_log_t::foreign_commit() {
    const auto version = connection.value(QStringLiteral("PRAGMA data_version"));
    if (!version.is_ok()) {
        return version;
    }
    const int now = version.value.toInt();
    return std::exchange(data_version, now) != now;
}

::base::result_of_t<change_batch_t> change_log_t::read(qint64 _after) {
    change_batch_t batch;
    batch.last_sequence = _after;
    const result_t result =
        connection.each(QStringLiteral("SELECT sequence, tab, key FROM changes WHERE sequence > ? "
                                       "ORDER BY sequence"),
                        {_after}, [&batch](const QSqlQuery& _row) {
                            batch.last_sequence = _row.value(0).toLongLong();
                            add(_row.value(1).toString(), _row.value(2).toString(), &batch);
                        });
    if (!result.is_ok()) {
        return result;
    }
    return batch;
}

::base::result_of_t<qint64> change_log_t::last_sequence() {
    const auto newest = connection.value(QStringLiteral("SELECT max(sequence) FROM changes"));
    if (!newest.is_ok()) {
        return newest;
    }
    return newest.value.toLongLong();
}

::base::result_of_t<qint64> change_log_t::newest_ever() {
    const auto newest =
        connection.value(QStringLiteral("SELECT seq FROM sqlite_sequence WHERE name = 'changes'"));
    if (!newest.is_ok()) {
        return newest;
    }
    return newest.value.toLongLong();
}

result_t change_log_t::prune(qint64 _sequence) {
    return connection.run(QStringLiteral("DELETE FROM changes WHERE sequence <= ?"), {_sequence});
}

result_t change_log_t::clear() {
    return connection.run(QStringLiteral("DELETE FROM changes"));
}

result_t change_log_t::collapse(qint64 _sequence) {
    const result_t deleted =
        connection.run(QStringLiteral("DELETE FROM changes WHERE sequence > ?"), {_sequence});
    return deleted.is_ok() ? connection.run(QStringLiteral(
                                 "INSERT INTO changes (tab, key) VALUES ('bulk', '')"))
                           : deleted;
}

result_t change_log_t::collapse_above(qint64 _sequence, int _most) {
    const auto elements = connection.value(
        QStringLiteral("SELECT count(DISTINCT key) FROM changes WHERE sequence > ? AND "
                       "tab IN ('elements', 'thermostats')"),
        {_sequence});
    if (!elements.is_ok()) {
        return elements;
    }
    return elements.value.toInt() > _most ? collapse(_sequence) : result_t();
}

}  // namespace database::store
