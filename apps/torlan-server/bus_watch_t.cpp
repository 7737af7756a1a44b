#include "bus_watch_t.h"

#include <QDateTime>
#include <QJsonArray>

#include "bus_json.h"

namespace torlan {

using control::asker_t;
using database::live::live_bus_port_t;

bus_watch_t::bus_watch_t(QObject* _parent) : QObject(_parent) {}

bus_watch_t::~bus_watch_t() = default;

void bus_watch_t::follow(live_bus_port_t* _bus) {
    bus = _bus;
    if (bus) {
        connect(bus, &live_bus_port_t::telegram_passed, this, &bus_watch_t::on_telegram);
    }
}

QJsonObject bus_watch_t::state() const {
    if (!bus) {
        return {};
    }
    return {{QStringLiteral("url"), bus->settings().url},
            {QStringLiteral("link"),
             bus->is_link_up() ? QStringLiteral("online") : QStringLiteral("offline")},
            {QStringLiteral("counters"), counters_json(bus->counters())}};
}

void bus_watch_t::take(asker_t* _asker, const QJsonObject& _question) {
    if (!bus) {
        _asker->refuse(QStringLiteral("The server has no bus: it was started without --knx."));
        return;
    }
    QJsonObject known = state();
    QJsonArray last;
    for (const QJsonObject& telegram : telegrams) {
        last.append(telegram);
    }
    known.insert(QStringLiteral("telegrams"), last);
    _asker->send(known);
    if (_question.value(QLatin1String("follow")).toBool()) {
        followers.append({_asker});
    } else {
        _asker->finish();
    }
}

void bus_watch_t::on_telegram(const bus::bus_telegram_t& _telegram) {
    const QJsonObject json = telegram_json(_telegram, QDateTime::currentDateTimeUtc());
    telegrams.push_back(json);
    if (telegrams.size() > most_telegrams) {
        telegrams.pop_front();
    }
    followers.removeIf([](const follower_t& _one) { return !_one.asker; });
    for (follower_t& follower : followers) {
        QJsonObject line{{QStringLiteral("telegram"), json}};
        if (follower.lost > 0) {
            line.insert(QStringLiteral("lost"), follower.lost);
        }
        follower.lost = follower.asker->send(line) ? 0 : follower.lost + 1;
    }
}

}  // namespace torlan
