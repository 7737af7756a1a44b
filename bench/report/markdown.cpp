#include "bench/report/markdown.h"

#include <QLocale>
#include <cmath>

namespace bench {

QString markdown_table(const QStringList& _head, const QList<QStringList>& _rows) {
    QString text = "| " + _head.join(" | ") + " |\n|---|";
    text += QString("---:|").repeated(_head.size() - 1) + '\n';
    for (const QStringList& row : _rows) {
        text += "| " + row.join(" | ") + " |\n";
    }
    return text;
}

QString figure(double _value) {
    const double size = std::abs(_value);
    const int places = size >= 100 ? 0 : (size >= 10 ? 1 : 2);
    return QLocale(QLocale::English).toString(_value, 'f', places);
}

QString number_of(double _count) {
    return QLocale(QLocale::English).toString(_count, 'f', 0);
}

}  // namespace bench
