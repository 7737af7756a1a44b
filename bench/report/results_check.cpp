#include "bench/report/results_check.h"

#include <QJsonArray>
#include <QStringList>

namespace bench {

namespace {

using base::result_t;

constexpr int least_rounds = 9;
const QStringList sections{"requests", "pushes", "storms", "starts", "changes", "micro"};

result_t check_lane(const QString& _section, const QJsonObject& _lane, int _rounds) {
    for (const char* const key : {"rate", "median", "p99"}) {
        if (_lane[QLatin1String(key)].toArray().size() != _rounds) {
            return result_t::failed(
                QStringLiteral("\"%1\" of \"%2\" in \"%3\" is not of %4 rounds.")
                    .arg(QLatin1String(key), _lane["name"].toString(), _section)
                    .arg(_rounds));
        }
    }
    return {};
}

result_t check_section(const QString& _name, const QJsonArray& _rows, int _rounds) {
    if (_rows.isEmpty()) {
        return result_t::failed(QStringLiteral("The results have no \"%1\".").arg(_name));
    }
    for (const auto& row : _rows) {
        const QJsonArray lanes = row.toObject()["lanes"].toArray();
        for (const auto& lane : lanes) {
            const result_t checked = check_lane(_name, lane.toObject(), _rounds);
            if (!checked.is_ok()) {
                return checked;
            }
        }
    }
    return {};
}

}  // namespace

result_t check_results(const QJsonObject& _results) {
    if (_results["format"].toInt() != 1) {
        return result_t::failed("These are no results of torlan-bench, or of another version.");
    }
    if (_results["smallest"].toBool(true)) {
        return result_t::failed("The results are of the smallest run, which says nothing.");
    }
    const int rounds = _results["rounds"].toInt();
    if (rounds < least_rounds) {
        return result_t::failed(QStringLiteral("The results are of %1 rounds, %2 are needed.")
                                    .arg(rounds)
                                    .arg(least_rounds));
    }
    for (const QString& name : sections) {
        const result_t checked = check_section(name, _results[name].toArray(), rounds);
        if (!checked.is_ok()) {
            return checked;
        }
    }
    return {};
}

}  // namespace bench
