#pragma once

#include "store/set_aside_t.h"

namespace database::store {

/// Makes every table of schema.sql anew and takes the rows of the former ones over, column by
/// column of the same name; a new column gets its default. A row that the new table refuses is set
/// aside, and so is what refers to it. Inside a writing transaction, with foreign keys off.
class table_rebuild_t {
 public:
    /// @param _tables of schema.sql that the database has
    table_rebuild_t(connection_t& _connection, QStringList _tables);

    ::base::result_t run();

    /// Which rows were set aside.
    QStringList notes() const { return aside.notes(); }

 private:
    using step_t = ::base::result_t (table_rebuild_t::*)(const QString& _table);

    ::base::result_t for_each_table(step_t _step);
    ::base::result_t put_away(const QString& _table);
    ::base::result_t take_over(const QString& _table);
    ::base::result_t set_refused_aside(const row_t& _shape);
    ::base::result_t check_references(const QString& _table);
    ::base::result_t check_reference(const row_t& _shape, const QStringList& _reference);
    ::base::result_t drop_former(const QString& _table);
    ::base::result_t continue_changes(qint64 _sequence);

    /// The columns that both the former and the new table have.
    ::base::result_of_t<row_t> shape_of(const QString& _table);
    ::base::result_of_t<QList<row_t>> rows(const row_t& _shape, const QString& _from_where);
    /// One list for each row.
    ::base::result_of_t<QList<QStringList>> texts(const QString& _sql, const QVariantList& _values);

    connection_t& connection;
    const QStringList tables;
    set_aside_t aside;
};

}  // namespace database::store
