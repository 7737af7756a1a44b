#include "store/thing_editor_t.h"

#include <QSqlQuery>

#include "database/name_rules.h"
#include "installation/installation_rules.h"
#include "store/change_log_t.h"
#include "store/sqlite_store_t.h"
#include "store/store_reader_t.h"
#include "store/thing_writer_t.h"
#include "store/transaction_t.h"

namespace database::store {

using ::base::result_of_t;
using ::base::result_t;
using installation::installation_t;

namespace {

constexpr qsizetype told_referrers = 3;

/// What things refer to, by kind.
QStringList items_of(const installation_t& _thing) {
    QStringList ids;
    for (const installation::element_t& element : _thing.elements) {
        ids += element.functions.values();
    }
    for (const installation::thermostat_t& thermostat : _thing.thermostats) {
        ids += thermostat.ids.values() +
               QStringList{thermostat.id_actual, thermostat.id_windows_contact};
    }
    ids.removeAll(QString());
    return ids;
}

/// A new one, with nothing set.
void insert_new(kind_t _kind, const QString& _id, installation_t* _thing) {
    switch (_kind) {
        case kind_t::element:
            _thing->elements.insert(_id, {});
            break;
        case kind_t::item:
            _thing->items.insert(_id, {QStringLiteral(""), {}});
            break;
        case kind_t::scenario:
            _thing->scenarios.insert(_id, false);
            break;
        case kind_t::thermostat:
            _thing->thermostats.insert(_id, {});
            break;
        case kind_t::user:
            break;
    }
}

/// Of an item all four, of the others the first that fits.
QString referrers_sql(kind_t _kind) {
    switch (_kind) {
        case kind_t::item:
            return QStringLiteral(
                "SELECT 'element ' || element || ' (' || name || ')' FROM functions WHERE item = ? "
                "UNION ALL SELECT 'thermostat ' || thermostat || ' (' || key || ')' "
                "FROM thermostat_ids WHERE item = ? "
                "UNION ALL SELECT 'thermostat ' || id || ' (id_actual)' "
                "FROM thermostats WHERE id_actual = ? "
                "UNION ALL SELECT 'thermostat ' || id || ' (id_windows_contact)' "
                "FROM thermostats WHERE id_windows_contact = ?");
        case kind_t::scenario:
            return QStringLiteral("SELECT 'element ' || id FROM elements WHERE scenario = ?");
        case kind_t::thermostat:
            return QStringLiteral("SELECT 'element ' || id FROM elements WHERE thermostat = ?");
        default:
            return {};
    }
}

}  // namespace

result_t thing_editor_t::add(kind_t _kind, const QString& _id, const edit_t& _edit) {
    return run_edit(_kind, _id, _edit, true);
}

result_t thing_editor_t::change(kind_t _kind, const QString& _id, const edit_t& _edit) {
    return run_edit(_kind, _id, _edit, false);
}

result_t thing_editor_t::run_edit(kind_t _kind, const QString& _id, const edit_t& _edit,
                                  bool _is_new) {
    transaction_t transaction(connection, transaction_t::kind_t::writing);
    if (!transaction.begun().is_ok()) {
        return transaction.begun();
    }
    installation_t thing;
    result_t result = _is_new ? check_free(_kind, _id) : check_there(_kind, _id);
    if (result.is_ok() && _is_new) {
        insert_new(_kind, _id, &thing);
    } else if (result.is_ok()) {
        result = store_reader_t(connection).read_things(_kind, {_id}, &thing);
    }
    if (result.is_ok()) {
        result = _edit(&thing);
    }
    if (result.is_ok()) {
        result = check(thing);
    }
    if (result.is_ok()) {
        using row_t = thing_writer_t::row_t;
        result = thing_writer_t(connection)
                     .write(_kind, _id, thing, _is_new ? row_t::is_new : row_t::is_there);
    }
    return result.is_ok() ? transaction.commit() : result;
}

result_t thing_editor_t::check(const installation_t& _thing) {
    // What it refers to is there by its name; the rest of it has been judged already.
    installation_t whole = _thing;
    for (const QString& item : items_of(_thing)) {
        const auto known = exists(kind_t::item, item);
        if (!known.is_ok()) {
            return known;
        }
        if (known.value) {
            whole.items.insert(item, {QStringLiteral(""), {}});
        }
    }
    for (const installation::element_t& element : _thing.elements) {
        const auto scenario = exists(kind_t::scenario, element.scenario);
        const auto thermostat = exists(kind_t::thermostat, element.thermostat);
        if (!scenario.is_ok() || !thermostat.is_ok()) {
            return scenario.is_ok() ? result_t(thermostat) : result_t(scenario);
        }
        if (scenario.value) {
            whole.scenarios.insert(element.scenario, false);
        }
        if (thermostat.value) {
            whole.thermostats.insert(element.thermostat, {});
        }
    }
    const installation::problems_t problems = check_rules(whole);
    return problems.is_empty() ? result_t()
                               : result_t::failed(problems.summary() + QLatin1Char('.'));
}

result_t thing_editor_t::rename(kind_t _kind, const QString& _id, const QString& _new_id) {
    transaction_t transaction(connection, transaction_t::kind_t::writing);
    result_t result = transaction.begun();
    if (result.is_ok()) {
        result = check_there(_kind, _id);
    }
    if (result.is_ok()) {
        result = check_free(_kind, _new_id);
    }
    change_log_t log(connection);
    const auto before = result.is_ok() ? log.last_sequence() : result_of_t<qint64>(result);
    if (before.is_ok()) {
        result =
            connection.run(QStringLiteral("UPDATE %1 SET id = ? WHERE id = ?").arg(table_of(_kind)),
                           {_new_id, _id});
    }
    if (result.is_ok() && before.is_ok()) {
        result = log.collapse_above(before.value, sqlite_store_t::told_singly);
    }
    return result.is_ok() && before.is_ok() ? transaction.commit()
                                            : (result.is_ok() ? result_t(before) : result);
}

result_t thing_editor_t::remove(kind_t _kind, const QString& _id) {
    transaction_t transaction(connection, transaction_t::kind_t::writing);
    result_t result = transaction.begun();
    if (result.is_ok()) {
        result = check_there(_kind, _id);
    }
    if (result.is_ok()) {
        result = check_unused(_kind, _id);
    }
    if (result.is_ok()) {
        result = connection.run(QStringLiteral("DELETE FROM %1 WHERE id = ?").arg(table_of(_kind)),
                                {_id});
    }
    return result.is_ok() ? transaction.commit() : result;
}

result_of_t<QStringList> thing_editor_t::referrers(kind_t _kind, const QString& _id) {
    const QString sql = referrers_sql(_kind);
    QStringList found;
    if (sql.isEmpty()) {
        return found;
    }
    const result_t read = connection.each(
        sql, QVariantList(sql.count(QLatin1Char('?')), _id),
        [&found](const QSqlQuery& _row) { found.append(_row.value(0).toString()); });
    if (!read.is_ok()) {
        return read;
    }
    return found;
}

result_t thing_editor_t::check_unused(kind_t _kind, const QString& _id) {
    const auto found = referrers(_kind, _id);
    if (!found.is_ok() || found.value.isEmpty()) {
        return found;
    }
    const qsizetype more = found.value.size() - told_referrers;
    return result_t::failed(
        QStringLiteral("The %1 %2 is used by %3%4.")
            .arg(word_of(_kind), shown(_id),
                 found.value.mid(0, told_referrers).join(QLatin1String(", ")),
                 more > 0 ? QStringLiteral(" and %1 more").arg(more) : QString()));
}

result_of_t<bool> thing_editor_t::exists(kind_t _kind, const QString& _id) {
    const auto found = connection.value(
        QStringLiteral("SELECT 1 FROM %1 WHERE id = ?").arg(table_of(_kind)), {_id});
    if (!found.is_ok()) {
        return found;
    }
    return found.value.isValid();
}

result_t thing_editor_t::check_there(kind_t _kind, const QString& _id) {
    const auto found = exists(_kind, _id);
    return found.is_ok() && !found.value
               ? result_t::failed(
                     QStringLiteral("There is no %1 %2.").arg(word_of(_kind), shown(_id)))
               : result_t(found);
}

result_t thing_editor_t::check_free(kind_t _kind, const QString& _id) {
    const QString error = identifier_error(_id);
    if (!error.isEmpty()) {
        return result_t::failed(
            QStringLiteral("The %1's identifier %2 %3.").arg(word_of(_kind), quoted(_id), error));
    }
    const auto found = exists(_kind, _id);
    return found.is_ok() && found.value
               ? result_t::failed(
                     QStringLiteral("There is already the %1 %2.").arg(word_of(_kind), _id))
               : result_t(found);
}

}  // namespace database::store
