#include "doctor/findings.h"

#include <QStringList>
#include <algorithm>

#include "database/name_rules.h"

namespace torlan {

namespace {

QString word_of(health_t _health) {
    switch (_health) {
        case health_t::ok:
            return QStringLiteral("ok");
        case health_t::unchecked:
            return QStringLiteral("not checked");
        case health_t::warning:
            return QStringLiteral("warning");
        case health_t::problem:
            break;
    }
    return QStringLiteral("problem");
}

int count(const findings_t& _findings, health_t _health) {
    return int(
        std::count_if(_findings.begin(), _findings.end(),
                      [_health](const finding_t& _finding) { return _finding.health == _health; }));
}

}  // namespace

health_t verdict_of(const findings_t& _findings) {
    for (const health_t health : {health_t::problem, health_t::warning}) {
        if (count(_findings, health) > 0) {
            return health;
        }
    }
    return health_t::ok;
}

QString finding_text(const finding_t& _finding) {
    // Not shown(): a path may be longer.
    return database::cleaned_text(QStringLiteral("%1 %2 %3")
                                      .arg(word_of(_finding.health), -11)
                                      .arg(_finding.about, -9)
                                      .arg(_finding.text));
}

QJsonObject finding_json(const finding_t& _finding) {
    return {{QStringLiteral("about"), _finding.about},
            {QStringLiteral("health"), word_of(_finding.health)},
            {QStringLiteral("text"), _finding.text}};
}

QString verdict_text(const findings_t& _findings) {
    QStringList parts;
    const auto add = [&](health_t _health, const char* _one, const char* _many) {
        if (const int number = count(_findings, _health); number > 0) {
            parts.append(
                QStringLiteral("%1 %2").arg(number).arg(QLatin1String(number == 1 ? _one : _many)));
        }
    };
    add(health_t::problem, "problem", "problems");
    add(health_t::warning, "warning", "warnings");
    if (parts.isEmpty()) {
        parts.append(QStringLiteral("Everything is well"));
    }
    add(health_t::unchecked, "not checked", "not checked");
    return parts.join(QStringLiteral(", ")) + QLatin1Char('.');
}

QJsonObject verdict_json(const findings_t& _findings) {
    return {{QStringLiteral("verdict"), word_of(verdict_of(_findings))},
            {QStringLiteral("problems"), count(_findings, health_t::problem)},
            {QStringLiteral("warnings"), count(_findings, health_t::warning)},
            {QStringLiteral("unchecked"), count(_findings, health_t::unchecked)}};
}

}  // namespace torlan
