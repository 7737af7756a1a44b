#include "drivers/plugins/plugin_driver_knx/knx_bus_t.h"

#include <algorithm>

#include "drivers/plugins/plugin_driver_knx/telegram_report.h"
#include "logs/log_line.h"

namespace knx {

namespace {

constexpr const char* source = "server/drivers/plugins/plugin_driver_knx/knx_bus_t";

constexpr std::size_t most_waiting = 1000;
constexpr std::chrono::milliseconds shortest_pause{250};
constexpr std::chrono::milliseconds longest_pause{10'000};
constexpr std::chrono::milliseconds question_pause{50};

void tell(int _level, const QString& _sentence, const char* _function, int _line) {
    utility::log_line(_sentence, _level, _function, source, _line);
}

}  // namespace

knx_bus_t::knx_bus_t(bus::bus_port_t* _port, QObject* _parent)
    : QObject(_parent),
      port(_port),
      settings(_port->settings()),
      reporter(_port, &counters),
      queue(most_waiting),
      backoff(shortest_pause, longest_pause),
      link(new knx_link_t),
      cache(new cache_reader_t),
      cache_thread(cache),
      link_thread(link) {
    retry.setSingleShot(true);
    pace.setSingleShot(true);
    pace.setTimerType(Qt::PreciseTimer);
    pace.setInterval(1000 / std::max(settings.telegrams_per_second, 1));
    asking.setInterval(question_pause);
    connect(&retry, &QTimer::timeout, this, &knx_bus_t::open);
    connect(&pace, &QTimer::timeout, this, &knx_bus_t::send_next);
    connect(&asking, &QTimer::timeout, this, &knx_bus_t::ask_next);
    connect(link, &knx_link_t::opened, this, &knx_bus_t::on_opened);
    connect(link, &knx_link_t::lost, this, &knx_bus_t::on_lost);
    connect(link, &knx_link_t::received, this, &knx_bus_t::on_received);
    connect(link, &knx_link_t::sent, this, &knx_bus_t::on_sent);
    connect(cache, &cache_reader_t::found, this, &knx_bus_t::on_cached);
    connect(cache, &cache_reader_t::finished, this, [this]() { asking.start(); });
    connect(port, &bus::bus_port_t::value_requested, this, &knx_bus_t::on_value_requested);
    connect(port, &bus::bus_port_t::execution_requested, this, &knx_bus_t::on_execution_requested);
    connect(port, &bus::bus_port_t::points_changed, this, &knx_bus_t::reload);
    connect(port, &bus::bus_port_t::counters_asked, this,
            [this]() { port->report_counters(counters); });
    reload();
    open();
}

knx_bus_t::~knx_bus_t() = default;

void knx_bus_t::reload() {
    const QList<group_address_t> former = map.questions();
    map = bus_map_t(port->items(), port->scenarios());
    if (online && settings.read) {
        plan.add(map.questions(), former);
        asking.start();
    }
}

void knx_bus_t::open() {
    link_thread.run([at = link, url = settings.url]() { at->open(url); });
}

void knx_bus_t::on_opened() {
    online = true;
    told_offline = false;
    ++counters.links;
    backoff.reset();
    tell(6, QStringLiteral("The bus is there, at %1.").arg(settings.url), "on_opened", __LINE__);
    port->report_link(true);
    if (!settings.read) {
        return;
    }
    plan.start(map.questions());
    QList<quint16> addresses;
    for (const group_address_t address : plan.left()) {
        addresses.append(address.raw());
    }
    cache_thread.run([at = cache, url = settings.url, addresses]() { at->read(url, addresses); });
}

void knx_bus_t::on_lost() {
    online = false;
    asking.stop();
    plan.start({});
    counters.dropped += queue.size() + (on_the_way ? 1 : 0);
    queue.clear();
    on_the_way.reset();
    const auto pause = backoff.next();
    if (!told_offline) {
        told_offline = true;
        tell(2,
             QStringLiteral("The bus is not there, at %1; it is tried again, at most 10 s apart.")
                 .arg(settings.url),
             "on_lost", __LINE__);
    }
    port->report_link(false);
    retry.start(pause);
}

void knx_bus_t::on_received(int _source, int _destination, const QByteArray& _apdu) {
    ++counters.received;
    const auto telegram = telegram_from_apdu(quint16(_source), quint16(_destination), _apdu);
    if (!telegram) {
        ++counters.malformed;
        const QString address = group_address_t(quint16(_destination)).text();
        if (told.is_first(QStringLiteral("malformed ") + address)) {
            tell(3,
                 QStringLiteral("Telegram of device %1 to address %2 is no group telegram: %3.")
                     .arg(device_text(quint16(_source)), address,
                          QString::fromLatin1(_apdu.left(16).toHex())),
                 "on_received", __LINE__);
        }
        return;
    }
    port->report_telegram(telegram_report(map, *telegram));
    if (telegram->command == command_t::read) {
        answer(telegram->destination);
        return;
    }
    take(*telegram);
}

void knx_bus_t::on_cached(int _source, int _destination, const QByteArray& _apdu) {
    const auto telegram = telegram_from_apdu(quint16(_source), quint16(_destination), _apdu);
    // What came meanwhile on the link itself is newer.
    if (online && telegram && plan.is_open(telegram->destination)) {
        take(*telegram);
    }
}

void knx_bus_t::take(const telegram_t& _telegram) {
    if (!reporter.report(map, _telegram)) {
        ++counters.unknown;
    }
    if (_telegram.command != command_t::read) {
        plan.answered(_telegram.destination);
    }
}

void knx_bus_t::answer(group_address_t _address) {
    const bus_point_t* const point = map.answerer(_address);
    if (point == nullptr) {
        return;
    }
    const auto payload = point->encode(port->value(point->id));
    if (payload.is_ok()) {
        push({0, _address, command_t::response, payload.value.data, payload.value.is_short},
             point->is_state());
    }
}

void knx_bus_t::on_value_requested(const QString& _id, const QString& _value) {
    const bus_point_t* const point = map.item(_id);
    if (point != nullptr) {
        request(*point, _value);
    }
}

void knx_bus_t::on_execution_requested(const QString& _id, bool _execution) {
    const bus_point_t* const point = map.scenario(_id);
    if (point == nullptr) {
        return;
    }
    if (!_execution) {
        // The bus knows no end of a scene.
        port->report_execution(_id, false);
        return;
    }
    request(*point, QString::number(point->scene));
}

void knx_bus_t::request(const bus_point_t& _point, const QString& _value) {
    if (!_point.write) {
        return;
    }
    const auto payload = _point.encode(_value);
    if (!payload.is_ok()) {
        ++counters.refused;
        tell(3, payload.error, "request", __LINE__);
        return;
    }
    if (!online) {
        drop(_point, _value, QStringLiteral("the bus is not there"));
        return;
    }
    push({0, *_point.write, command_t::write, payload.value.data, payload.value.is_short},
         _point.is_state());
}

void knx_bus_t::drop(const bus_point_t& _point, const QString& _value, const QString& _reason) {
    ++counters.dropped;
    tell(2,
         QStringLiteral("The value \"%1\" for item %2, address %3, is dropped: %4.")
             .arg(_value.left(80), _point.id, _point.write->text(), _reason),
         "drop", __LINE__);
}

void knx_bus_t::push(const telegram_t& _telegram, bool _is_state) {
    switch (queue.push(_telegram, _is_state)) {
        case write_queue_t::taken_t::added:
            break;
        case write_queue_t::taken_t::replaced:
            ++counters.replaced;
            break;
        case write_queue_t::taken_t::full:
            ++counters.dropped;
            tell(2,
                 QStringLiteral("A telegram to address %1 is dropped: %2 wait already.")
                     .arg(_telegram.destination.text())
                     .arg(queue.size()),
                 "push", __LINE__);
    }
    send_next();
}

void knx_bus_t::send_next() {
    if (pace.isActive() || on_the_way || !online) {
        return;
    }
    on_the_way = queue.take();
    if (!on_the_way) {
        return;
    }
    pace.start();
    link_thread.run([at = link, address = on_the_way->destination.raw(),
                     apdu = apdu_of(*on_the_way)]() { at->send(address, apdu); });
}

void knx_bus_t::on_sent() {
    if (!on_the_way) {
        return;
    }
    const telegram_t telegram = *on_the_way;
    on_the_way.reset();
    ++(telegram.command == command_t::read ? counters.asked : counters.sent);
    port->report_telegram(telegram_report(map, telegram));
    // knxd does not give a client its own telegrams back.
    take(telegram);
    send_next();
}

void knx_bus_t::ask_next() {
    const auto address = online && !on_the_way ? plan.take() : std::nullopt;
    if (plan.is_empty()) {
        asking.stop();
    }
    if (address) {
        on_the_way = telegram_t{0, *address, command_t::read, {}, false};
        link_thread.run([at = link, to = address->raw(), apdu = apdu_of(*on_the_way)]() {
            at->send(to, apdu);
        });
    }
}

}  // namespace knx
