#include "ets/data_point_type.h"

#include <QRegularExpression>

namespace ets {

namespace {

QList<QStringView> words_of(QStringView _words) {
    static const QRegularExpression gap(QStringLiteral("[\\s,;]+"));
    return _words.split(gap, Qt::SkipEmptyParts);
}

}  // namespace

QString type_text(QStringView _word) {
    static const QRegularExpression form(
        QStringLiteral("\\A(?:DPT-([1-9][0-9]{0,4})|DPST-([1-9][0-9]{0,4})-([0-9]{1,5}))\\z"));
    const QRegularExpressionMatch match = form.match(_word.trimmed().toString());
    if (!match.hasMatch()) {
        return {};
    }
    if (!match.captured(1).isEmpty()) {
        return match.captured(1);
    }
    return match.captured(2) + u'.' +
           QString::number(match.captured(3).toInt()).rightJustified(3, u'0');
}

QString first_type(QStringView _words) {
    for (const QStringView word : words_of(_words)) {
        const QString type = type_text(word);
        if (!type.isEmpty()) {
            return type;
        }
    }
    return {};
}

QString last_type(QStringView _words) {
    QString last;
    for (const QStringView word : words_of(_words)) {
        const QString type = type_text(word);
        last = type.isEmpty() ? last : type;
    }
    return last;
}

int main_type(QStringView _type) {
    const qsizetype dot = _type.indexOf(u'.');
    return (dot < 0 ? _type : _type.left(dot)).toInt();
}

}  // namespace ets
