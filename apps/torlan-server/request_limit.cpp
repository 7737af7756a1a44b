#include "request_limit.h"

#include <QStringList>
#include <algorithm>
#include <array>

namespace torlan {

namespace {

using limits_t = comunication::request_limits_t;

struct limit_t {
    const char* name;
    int lowest;
    int highest;
    double (*get)(const limits_t& _limits);
    void (*set)(limits_t* _limits, int _number);
};

template <auto Member>
constexpr limit_t limit(const char* _name, int _lowest, int _highest) {
    return {_name, _lowest, _highest,
            [](const limits_t& _limits) { return double(_limits.*Member); },
            [](limits_t* _limits, int _number) {
                _limits->*Member = static_cast<std::decay_t<decltype(_limits->*Member)>>(_number);
            }};
}

constexpr int gigabyte = 1024 * 1024 * 1024;

constexpr std::array limits{
    limit<&limits_t::request_bytes>("request-bytes", 256, gigabyte),
    limit<&limits_t::filter_entries>("filter-entries", 1, gigabyte),
    limit<&limits_t::value_bytes>("value-bytes", 1, gigabyte),
    limit<&limits_t::waiting_requests>("waiting-requests", 1, 1'000'000),
    limit<&limits_t::waiting_bytes>("waiting-bytes", 256, gigabyte),
    limit<&limits_t::waiting_bytes_of_all>("waiting-bytes-of-all", 256, gigabyte),
    limit<&limits_t::requests_per_second>("requests-per-second", 0, 1'000'000),
    limit<&limits_t::refused_bytes_per_second>("refused-bytes-per-second", 0, gigabyte),
    limit<&limits_t::at_once>("at-once", 1, 1'000),
    limit<&limits_t::publishes_per_second>("publishes-per-second", 0, 1'000'000),
    limit<&limits_t::publish_bytes_per_second>("publish-bytes-per-second", 0, 1'000'000'000),
};

}  // namespace

base::result_t set_request_limit(const QString& _text, limits_t* _limits) {
    const QString name = _text.section(QLatin1Char('='), 0, 0);
    const QString given = _text.section(QLatin1Char('='), 1);
    const auto* const found =
        std::find_if(limits.begin(), limits.end(),
                     [&name](const limit_t& _l) { return name == QLatin1String(_l.name); });
    if (found == limits.end()) {
        return base::result_t::failed(QStringLiteral("--limit knows no \"%1\"; there are: %2.")
                                          .arg(name, request_limit_names()));
    }
    bool is_number = false;
    const int number = given.toInt(&is_number);
    if (!is_number || number < found->lowest || number > found->highest) {
        return base::result_t::failed(
            QStringLiteral("--limit %1= takes a number from %2 to %3, not \"%4\".")
                .arg(name, QString::number(found->lowest), QString::number(found->highest), given));
    }
    found->set(_limits, number);
    return {};
}

QString request_limit_names() {
    QStringList names;
    for (const limit_t& each : limits) {
        names += QStringLiteral("%1=%2").arg(QLatin1String(each.name),
                                             QString::number(each.get({}), 'f', 0));
    }
    return names.join(QStringLiteral(", "));
}

}  // namespace torlan
