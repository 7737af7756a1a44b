#pragma once

#include <QString>
#include <QStringList>

namespace bench {

/// A Markdown table; the first cell of a row is text, the others are figures.
QString markdown_table(const QStringList& _head, const QList<QStringList>& _rows);

/// With as many places as three digits need, thousands apart: 0.94, 12.3, 1,234.
QString figure(double _value);

/// A number of things, thousands apart.
QString number_of(double _count);

}  // namespace bench
