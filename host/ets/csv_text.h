#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include "base/result_t.h"

namespace ets {

/// A line of a table, which may have been several lines of the text.
struct csv_row_t {
    int line = 0;  ///< where it begins, from 1
    QStringList cells;
};

/// Takes a table apart. A cell may stand in quotation marks, which are doubled inside and then hold
/// separators and line ends, too. Empty lines are left out.
base::result_of_t<QList<csv_row_t>> read_csv(const QString& _text, QChar _separator);

}  // namespace ets
