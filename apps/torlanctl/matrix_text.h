#pragma once

#include <QStringList>

namespace torlan {

/// How names make tables of so many letters in a line: as many in each as fit, at least one.
QList<QStringList> columns_of(const QStringList& _names, int _first_width, int _line_width);

/// One line: the first word in its width, then a word for each name, in the name's width.
QString matrix_line(const QString& _first, int _first_width, const QStringList& _names,
                    const QStringList& _words);

/// "rw", "r", "w" or ".".
QString letters_of(int _bits);

}  // namespace torlan
