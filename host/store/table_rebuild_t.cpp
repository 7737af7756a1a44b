#include "store/table_rebuild_t.h"

#include <QSqlQuery>
#include <QSqlRecord>

#include "database/name_rules.h"
#include "store/schema.h"

namespace database::store {

using ::base::result_of_t;
using ::base::result_t;

namespace {

QString former(const QString& _table) {
    return QStringLiteral("former_") + _table;
}

/// "a", "b" of the shape's columns, or another text for each.
QString list(const row_t& _shape, const QString& _each = QStringLiteral("\"%1\"")) {
    QStringList texts;
    for (const QString& column : _shape.columns) {
        texts.append(_each.contains(QLatin1String("%1")) ? _each.arg(column) : _each);
    }
    return texts.join(QLatin1String(", "));
}

/// A condition on the columns that name a row, each as @p _each says.
QString named(const row_t& _shape, const QString& _each) {
    QStringList texts;
    for (const QString& column : _shape.columns.mid(0, _shape.names)) {
        texts.append(_each.arg(column));
    }
    return texts.join(QLatin1String(" AND "));
}

/// Qt reads no bytes as null bytes, which it would write as NULL.
QVariant stored(const QVariant& _read) {
    const bool no_bytes = _read.typeId() == QMetaType::QByteArray && _read.toByteArray().isNull();
    return no_bytes ? QVariant(QByteArray("")) : _read;
}

/// What a constraint says, without SQLite's words around it.
QString reason_of(const QString& _error) {
    const QLatin1String failed("constraint failed: ");
    const qsizetype begin = _error.indexOf(failed) + failed.size();
    return _error.mid(begin, _error.size() - begin - 1);
}

}  // namespace

table_rebuild_t::table_rebuild_t(connection_t& _connection, QStringList _tables)
    : connection(_connection), tables(std::move(_tables)), aside(_connection) {}

result_t table_rebuild_t::run() {
    const auto sequence =
        connection.value(QStringLiteral("SELECT seq FROM sqlite_sequence WHERE name = 'changes'"));
    result_t result = sequence;
    if (result.is_ok()) {
        // References and views keep the names that they say, whatever a table is called meanwhile.
        result = connection.run(QStringLiteral("PRAGMA legacy_alter_table = ON"));
    }
    if (result.is_ok()) {
        result = for_each_table(&table_rebuild_t::put_away);
    }
    if (result.is_ok()) {
        result = create_tables(connection);
    }
    for (const step_t step : {&table_rebuild_t::take_over, &table_rebuild_t::check_references,
                              &table_rebuild_t::drop_former}) {
        if (result.is_ok()) {
            result = for_each_table(step);
        }
    }
    if (result.is_ok()) {
        result = create_triggers(connection);
    }
    return result.is_ok() ? continue_changes(sequence.value.toLongLong()) : result;
}

result_t table_rebuild_t::for_each_table(step_t _step) {
    result_t result;
    for (const QString& table : tables) {
        if (result.is_ok()) {
            result = (this->*_step)(table);
        }
    }
    return result;
}

result_t table_rebuild_t::put_away(const QString& _table) {
    const auto things =
        texts(QStringLiteral("SELECT type, name FROM sqlite_master WHERE tbl_name = ? "
                             "AND type IN ('trigger', 'index') AND sql IS NOT NULL"),
              {_table});
    result_t result = things;
    for (const QStringList& thing : things.value) {
        if (result.is_ok()) {
            result = connection.run(QStringLiteral("DROP %1 \"%2\"").arg(thing[0], thing[1]));
        }
    }
    return result.is_ok() ? connection.run(QStringLiteral("ALTER TABLE \"%1\" RENAME TO \"%2\"")
                                               .arg(_table, former(_table)))
                          : result;
}

result_t table_rebuild_t::take_over(const QString& _table) {
    if (_table == QLatin1String("changes")) {
        return {};
    }
    const result_of_t<row_t> shape = shape_of(_table);
    if (!shape.is_ok()) {
        return shape;
    }
    const result_t copied =
        connection.run(QStringLiteral("INSERT OR IGNORE INTO \"%1\" (%2) SELECT %2 FROM \"%3\"")
                           .arg(_table, list(shape.value), former(_table)));
    const int taken = connection.changed_rows();
    if (!copied.is_ok()) {
        return copied;
    }
    const auto all =
        connection.value(QStringLiteral("SELECT count(*) FROM \"%1\"").arg(former(_table)));
    return all.is_ok() && all.value.toInt() > taken ? set_refused_aside(shape.value)
                                                    : result_t(all);
}

result_t table_rebuild_t::set_refused_aside(const row_t& _shape) {
    const result_of_t<QList<row_t>> refused = rows(
        _shape, QStringLiteral("\"%1\" AS f WHERE NOT EXISTS (SELECT 1 FROM \"%2\" AS n WHERE %3)")
                    .arg(former(_shape.table), _shape.table,
                         named(_shape, QStringLiteral("n.\"%1\" IS f.\"%1\""))));
    const QString insert = QStringLiteral("INSERT INTO \"%1\" (%2) VALUES (%3)")
                               .arg(_shape.table, list(_shape), list(_shape, QStringLiteral("?")));
    result_t result = refused;
    for (const row_t& row : refused.value) {
        if (!result.is_ok()) {
            break;
        }
        // Once more, to hear why.
        result = connection.run(insert, row.values);
        if (connection.cause() == connection_t::cause_t::refused) {
            result = aside.add(row, reason_of(result.error));
        }
    }
    return result;
}

result_t table_rebuild_t::check_references(const QString& _table) {
    const result_of_t<row_t> shape = shape_of(_table);
    // A row that goes as a whole goes first.
    const auto references =
        texts(QStringLiteral("SELECT \"from\", \"table\", \"to\", on_delete FROM "
                             "pragma_foreign_key_list(?) ORDER BY on_delete"),
              {_table});
    result_t result = shape.is_ok() ? result_t(references) : result_t(shape);
    for (const QStringList& reference : references.value) {
        if (result.is_ok()) {
            result = check_reference(shape.value, reference);
        }
    }
    return result;
}

result_t table_rebuild_t::check_reference(const row_t& _shape, const QStringList& _reference) {
    const QString& column = _reference[0];
    const QString& parent = _reference[1];
    const result_of_t<QList<row_t>> lost =
        rows(_shape, QStringLiteral("\"%1\" WHERE \"%2\" IS NOT NULL AND \"%2\" NOT IN "
                                    "(SELECT \"%4\" FROM \"%3\")")
                         .arg(_shape.table, column, parent, _reference[2]));
    const QString where = named(_shape, QStringLiteral("\"%1\" IS ?"));
    const QString mend =
        _reference[3] == QLatin1String("CASCADE")
            ? QStringLiteral("DELETE FROM \"%1\" WHERE %2").arg(_shape.table, where)
            : QStringLiteral("UPDATE \"%1\" SET \"%3\" = NULL WHERE %2")
                  .arg(_shape.table, where, column);
    result_t result = lost;
    for (const row_t& row : lost.value) {
        const QString target = row.values.value(_shape.columns.indexOf(column)).toString();
        if (result.is_ok()) {
            result = aside.add(row, QStringLiteral("its %1 %2 is not among the %3")
                                        .arg(column, quoted(target), parent));
        }
        if (result.is_ok()) {
            result = connection.run(mend, row.values.mid(0, row.names));
        }
    }
    return result;
}

result_t table_rebuild_t::drop_former(const QString& _table) {
    return connection.run(QStringLiteral("DROP TABLE \"%1\"").arg(former(_table)));
}

/// A server that follows the file reads everything again; no number comes back.
result_t table_rebuild_t::continue_changes(qint64 _sequence) {
    const result_t counted =
        connection.run(QStringLiteral("INSERT INTO sqlite_sequence (name, seq) VALUES (?, ?)"),
                       {QStringLiteral("changes"), _sequence});
    return counted.is_ok() ? connection.run(QStringLiteral(
                                 "INSERT INTO changes (tab, key) VALUES ('bulk', '')"))
                           : counted;
}

result_of_t<row_t> table_rebuild_t::shape_of(const QString& _table) {
    const auto columns = texts(
        QStringLiteral("SELECT n.name, n.pk FROM pragma_table_info(?) AS n JOIN "
                       "pragma_table_info(?) AS f USING (name) ORDER BY n.pk = 0, n.pk, n.cid"),
        {_table, former(_table)});
    if (!columns.is_ok()) {
        return columns;
    }
    row_t shape{_table, {}, 0, {}};
    for (const QStringList& column : columns.value) {
        shape.columns.append(column[0]);
        shape.names += column[1] == QLatin1String("0") ? 0 : 1;
    }
    return shape;
}

result_of_t<QList<row_t>> table_rebuild_t::rows(const row_t& _shape, const QString& _from_where) {
    QList<row_t> found;
    const result_t result =
        connection.each(QStringLiteral("SELECT %1 FROM %2").arg(list(_shape), _from_where), {},
                        [&found, &_shape](const QSqlQuery& _row) {
                            row_t row = _shape;
                            for (int i = 0; i < int(_shape.columns.size()); ++i) {
                                row.values.append(stored(_row.value(i)));
                            }
                            found.append(row);
                        });
    if (!result.is_ok()) {
        return result;
    }
    return found;
}

result_of_t<QList<QStringList>> table_rebuild_t::texts(const QString& _sql,
                                                       const QVariantList& _values) {
    QList<QStringList> found;
    const result_t result = connection.each(_sql, _values, [&found](const QSqlQuery& _row) {
        QStringList row;
        for (int i = 0; i < _row.record().count(); ++i) {
            row.append(_row.value(i).toString());
        }
        found.append(row);
    });
    if (!result.is_ok()) {
        return result;
    }
    return found;
}

}  // namespace database::store
