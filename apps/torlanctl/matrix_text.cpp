#include "matrix_text.h"

#include "database/permission.h"

namespace torlan {

namespace {

constexpr int between = 2;

int width_of(const QString& _name) {
    return int(std::max<qsizetype>(_name.size(), 2)) + between;
}

}  // namespace

QList<QStringList> columns_of(const QStringList& _names, int _first_width, int _line_width) {
    QList<QStringList> tables;
    int left = 0;
    for (const QString& name : _names) {
        if (tables.isEmpty() || left < width_of(name)) {
            tables.append(QStringList());
            left = _line_width - _first_width;
        }
        tables.last().append(name);
        left -= width_of(name);
    }
    return tables;
}

QString matrix_line(const QString& _first, int _first_width, const QStringList& _names,
                    const QStringList& _words) {
    QString line = _first.leftJustified(_first_width);
    for (qsizetype i = 0; i < _names.size(); ++i) {
        line += QString(between, u' ') + _words[i].leftJustified(width_of(_names[i]) - between);
    }
    while (line.endsWith(QLatin1Char(' '))) {
        line.chop(1);
    }
    return line;
}

QString letters_of(int _bits) {
    namespace permission = database::permission;
    const QString letters =
        QLatin1String(permission::allows(quint64(_bits), permission::read_bit) ? "r" : "") +
        QLatin1String(permission::allows(quint64(_bits), permission::write_bit) ? "w" : "");
    return letters.isEmpty() ? QStringLiteral(".") : letters;
}

}  // namespace torlan
