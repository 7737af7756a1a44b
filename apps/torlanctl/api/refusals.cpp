#include "api/refusals.h"

#include "database/name_rules.h"

namespace torlan {

namespace {

constexpr QLatin1String passed_on("202");

QString with_place(const QString& _place, const QString& _what) {
    return _place.isEmpty() ? _what : _place + QStringLiteral(": ") + _what;
}

/// Of "error" and "message"; empty: there is no error.
QString error_in(const QJsonObject& _object) {
    const QJsonValue error = _object.value(QLatin1String("error"));
    return error.isDouble()
               ? QStringLiteral("%1 %2")
                     .arg(error.toInt())
                     .arg(database::shown(_object.value(QLatin1String("message")).toString()))
               : QString();
}

/// Of one element; a read has objects where a write has its statuses.
QStringList refusals_of(const QJsonObject& _element, const QString& _place) {
    if (const QString error = error_in(_element); !error.isEmpty()) {
        return {with_place(_place, error)};
    }
    QStringList found;
    const QJsonObject functions = _element.value(QLatin1String("functions")).toObject();
    for (auto each = functions.begin(); each != functions.end(); ++each) {
        if (each.value().isString() && each.value().toString() != passed_on) {
            found.append(with_place(
                _place, QStringLiteral("%1: %2").arg(database::shown(each.key()),
                                                     database::shown(each.value().toString()))));
        }
    }
    return found;
}

}  // namespace

QStringList refusals(const QJsonObject& _answer, about_t _about) {
    if (const QString error = error_in(_answer); !error.isEmpty()) {
        return {error};
    }
    const QJsonObject data = _answer.value(QLatin1String("data")).toObject();
    if (_about == about_t::one_element) {
        return refusals_of(data, {});
    }
    QStringList found;
    for (auto element = data.begin(); element != data.end(); ++element) {
        found += refusals_of(element.value().toObject(), database::shown(element.key()));
    }
    return found;
}

}  // namespace torlan
