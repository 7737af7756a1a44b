#include "api/written_value.h"

#include <algorithm>

#include "base/json_text.h"
#include "database/name_rules.h"

namespace torlan {

using base::result_t;

namespace {

bool is_digits(const QString& _text) {
    const auto is_digit = [](QChar _char) { return _char >= u'0' && _char <= u'9'; };
    return !_text.isEmpty() && std::all_of(_text.begin(), _text.end(), is_digit);
}

/// A switch's words; empty: it is none.
QStringList spellings(const QString& _typed) {
    for (const QStringList& same : {QStringList{QStringLiteral("1"), QStringLiteral("true")},
                                    QStringList{QStringLiteral("0"), QStringLiteral("false")}}) {
        if (same.contains(_typed)) {
            return same;
        }
    }
    return {};
}

}  // namespace

base::result_of_t<QList<assignment_t>> assignments_of(const QStringList& _typed) {
    QList<assignment_t> assignments;
    QStringList functions;
    for (const QString& each : _typed) {
        const qsizetype sign = each.indexOf(QLatin1Char('='));
        const QString function = each.left(sign);
        if (sign < 1) {
            return result_t::failed(
                QStringLiteral("%1 is no FUNCTION=VALUE.").arg(database::quoted(each)));
        }
        if (functions.contains(function)) {
            return result_t::failed(
                QStringLiteral("%1 is given twice.").arg(database::quoted(function)));
        }
        functions.append(function);
        assignments.append({function, each.mid(sign + 1)});
    }
    if (assignments.isEmpty()) {
        return result_t::failed(QStringLiteral("A FUNCTION=VALUE is missing."));
    }
    return assignments;
}

QJsonValue written_value(const QString& _typed) {
    if (is_digits(_typed)) {
        return _typed;
    }
    const auto value = base::json_from_text(_typed.toUtf8());
    return value && (value->isDouble() || value->isBool()) ? *value : QJsonValue(_typed);
}

QJsonObject written_functions(const QList<assignment_t>& _assignments) {
    QJsonObject functions;
    for (const assignment_t& assignment : _assignments) {
        functions.insert(assignment.function, written_value(assignment.value));
    }
    return functions;
}

bool comes_of(const QString& _value, const QString& _typed) {
    const QJsonValue written = written_value(_typed);
    const QString number = written.isDouble() ? QString::number(written.toDouble()) : QString();
    return _value == _typed || spellings(_typed).contains(_value) ||
           (!number.isEmpty() && (_value == number || spellings(number).contains(_value)));
}

}  // namespace torlan
