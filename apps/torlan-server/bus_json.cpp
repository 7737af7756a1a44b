#include "bus_json.h"

#include <QJsonArray>

namespace torlan {

namespace {

QString kind_text(bus::bus_telegram_t::kind_t _kind) {
    using kind_t = bus::bus_telegram_t::kind_t;
    switch (_kind) {
        case kind_t::read:
            return QStringLiteral("read");
        case kind_t::response:
            return QStringLiteral("response");
        default:
            return QStringLiteral("write");
    }
}

}  // namespace

QJsonObject telegram_json(const bus::bus_telegram_t& _telegram, const QDateTime& _time) {
    QJsonObject json{{QStringLiteral("time"), _time.toUTC().toString(Qt::ISODateWithMs)},
                     {QStringLiteral("kind"), kind_text(_telegram.kind)},
                     {QStringLiteral("source"), _telegram.source},
                     {QStringLiteral("address"), _telegram.address},
                     {QStringLiteral("items"), QJsonArray::fromStringList(_telegram.ids)}};
    if (!_telegram.dpt.isEmpty()) {
        json.insert(QStringLiteral("dpt"), _telegram.dpt);
    }
    if (_telegram.kind != bus::bus_telegram_t::kind_t::read) {
        json.insert(QStringLiteral("value"), _telegram.value);
    }
    return json;
}

QJsonObject counters_json(const bus::bus_counters_t& _counters) {
    const auto number = [](quint64 _count) { return QJsonValue(qint64(_count)); };
    return {{QStringLiteral("received"), number(_counters.received)},
            {QStringLiteral("sent"), number(_counters.sent)},
            {QStringLiteral("asked"), number(_counters.asked)},
            {QStringLiteral("replaced"), number(_counters.replaced)},
            {QStringLiteral("dropped"), number(_counters.dropped)},
            {QStringLiteral("refused"), number(_counters.refused)},
            {QStringLiteral("unknown"), number(_counters.unknown)},
            {QStringLiteral("undecodable"), number(_counters.undecodable)},
            {QStringLiteral("malformed"), number(_counters.malformed)},
            {QStringLiteral("links"), number(_counters.links)}};
}

}  // namespace torlan
