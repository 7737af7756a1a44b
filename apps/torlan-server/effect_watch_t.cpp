#include "effect_watch_t.h"

#include <QJsonValue>
#include <algorithm>
#include <chrono>
#include <utility>

#include "live/live_database_t.h"

namespace torlan {

using comunication::mqtt_endpoint_t;
using control::asker_t;
using database::live::live_database_t;
using database::store::change_mark_t;

namespace {

constexpr std::chrono::milliseconds between_looks{50};
constexpr qint64 longest_wait_ms = 60'000;

/// Drivers load what a bulk signal stands for a moment later, and do nothing else meanwhile.
constexpr qint64 after_bulk_ms = 400;

/// Marks of other parts are counted from 1 on.
constexpr quint64 first_number = quint64(1) << 62;

QJsonObject not_yet(const QString& _why) {
    return {{QStringLiteral("effective"), false}, {QStringLiteral("reason"), _why}};
}

}  // namespace

effect_watch_t::effect_watch_t(QObject* _parent)
    : QObject(_parent), last_number(first_number), pace(this) {
    pace.setInterval(between_looks);
    connect(&pace, &QTimer::timeout, this, &effect_watch_t::look);
}

effect_watch_t::~effect_watch_t() = default;

void effect_watch_t::follow(lag_t _lag, database::database_t* _database,
                            mqtt_endpoint_t* _endpoint) {
    lag = std::move(_lag);
    endpoint = _endpoint;
    connect(_endpoint, &mqtt_endpoint_t::marked, this, &effect_watch_t::on_marked);
    const auto on_bulk = [this]() { since_bulk.start(); };
    connect(_database->getPersistent()->getNotifier(),
            &database::persistent::ps_notifier_t::onPersistentChangeDatabase, this, on_bulk);
    connect(_database->getRealtime()->getNotifier(),
            &database::realtime::rt_notifier_t::onRealtimeChangeItems, this, on_bulk);
}

void effect_watch_t::end_following() {
    lag = nullptr;
    endpoint.clear();
    waits.clear();
    pace.stop();
}

void effect_watch_t::take(asker_t* _asker, const QJsonObject& _question) {
    const auto mark = change_mark_t::from_json(_question.value(QLatin1String("mark")).toObject());
    if (!mark) {
        _asker->refuse(QStringLiteral("The question does not say which change."));
        return;
    }
    const qint64 within = _question.value(QLatin1String("within_ms")).toInteger(0);
    const qint64 patience = std::clamp(within, qint64(0), longest_wait_ms);
    waits.insert(++last_number, {_asker, *mark, QDeadlineTimer(patience)});
    pace.start();
    look();
}

void effect_watch_t::look() {
    // The answer's receiver may go while it is told.
    const QList<quint64> numbers = waits.keys();
    for (const quint64 number : numbers) {
        const auto wait = waits.find(number);
        if (wait != waits.end()) {
            look_at(number, &*wait);
        }
    }
    if (waits.isEmpty()) {
        pace.stop();
    }
}

void effect_watch_t::look_at(quint64 _number, wait_t* _wait) {
    if (!_wait->asker) {
        waits.remove(_number);
        return;
    }
    const QString why = reason(*_wait);
    if (_wait->limit.hasExpired()) {
        _wait->asker->send(not_yet(why));
        _wait->asker->finish();
        waits.remove(_number);
    } else if (_wait->stage == stage_t::lagging && why.isEmpty()) {
        give_to_drivers(_number, _wait);
    }
}

QString effect_watch_t::reason(const wait_t& _wait) const {
    if (!lag) {
        return QStringLiteral("the server is still starting.");
    }
    switch (_wait.stage) {
        case stage_t::with_drivers:
            return QStringLiteral("the server is busy.");
        case stage_t::with_broker:
            return QStringLiteral("the MQTT broker has not got all of it.");
        default:
            break;
    }
    const QString why = lag(_wait.mark);
    return why.isEmpty() && since_bulk.isValid() && since_bulk.elapsed() < after_bulk_ms
               ? live_database_t::taking_over()
               : why;
}

void effect_watch_t::give_to_drivers(quint64 _number, wait_t* _wait) {
    _wait->stage = stage_t::with_drivers;
    auto* const turn = new comunication::drivers_turn_t(this);
    connect(turn, &comunication::drivers_turn_t::over, this, [this, turn, _number]() {
        turn->deleteLater();
        give_to_broker(_number);
    });
    turn->begin();
}

void effect_watch_t::give_to_broker(quint64 _number) {
    const auto wait = waits.find(_number);
    if (wait == waits.end() || !endpoint) {
        return;
    }
    wait->stage = stage_t::with_broker;
    QMetaObject::invokeMethod(
        endpoint.data(), [to = endpoint.data(), _number]() { to->mark(_number); },
        Qt::QueuedConnection);
}

void effect_watch_t::on_marked(quint64 _number, bool _complete) {
    const auto wait = waits.find(_number);
    if (wait == waits.end()) {
        return;
    }
    // With its connection the broker may have lost what the mark stood behind.
    wait->stage = stage_t::lagging;
    if (!_complete) {
        return;
    }
    if (wait->asker) {
        wait->asker->send({{QStringLiteral("effective"), true}});
        wait->asker->finish();
    }
    waits.remove(_number);
}

}  // namespace torlan
