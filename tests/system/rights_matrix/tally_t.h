#pragma once

#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

#include "system/rights_matrix/door_t.h"
#include "system/rights_matrix/outcome_t.h"
#include "system/rights_matrix/path_t.h"
#include "system/rights_matrix/right_t.h"

namespace matrix {

/// Counts the cells that were tried and keeps the names of those that were not as expected.
class tally_t {
 public:
    /// One cell: a user, who has this right at this moment, an element, a path and a door.
    struct cell_t {
        right_t right;
        QString element;  ///< empty: who is not let in gets to none
        path_t path;
        door_t door;
        QString moment;
        bool is_hidden = false;
    };

    void note(const cell_t& _cell, outcome_t _seen);
    /// Cells could not be tried; a sentence.
    void miss(const QString& _why) { missed_cells.append(_why); }

    int tried() const { return int(names.size()); }
    /// Allowed what is not to be.
    const QStringList& leaked() const { return leaks; }
    /// Did not get what was granted.
    const QStringList& shut_out() const { return outs; }
    /// Neither, but told otherwise.
    const QStringList& told_otherwise() const { return others; }

    const QStringList& missed() const { return missed_cells; }

    /// A table of moments, and the names of all cells that were not as expected.
    QString report() const;

 private:
    struct counts_t {
        int tried = 0;
        int allowed = 0;
        int leaked = 0;
        int shut_out = 0;
        int otherwise = 0;
    };

    QSet<QString> names;
    QMap<QString, counts_t> moments;
    QStringList leaks;
    QStringList outs;
    QStringList others;
    QStringList missed_cells;
};

}  // namespace matrix
