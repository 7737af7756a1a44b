#include "system/rights_matrix/warden_t.h"

#include <QDeadlineTimer>

#include "kit/password_of.h"
#include "system/rights_matrix/matrix_home.h"

namespace matrix {

namespace {

bool is_on(const QString& _value) {
    return _value == "1" || _value == "true";
}

/// The same for a switch, whichever word it uses.
bool is_equal(const element_t& _element, const QString& _one, const QString& _other) {
    return _element.is_switch ? is_on(_one) == is_on(_other) : _one == _other;
}

QString fence_value(const kit::raw_message_t& _state) {
    return value_in(object_of(_state.payload).value(QLatin1String("data")).toObject(), "execute");
}

}  // namespace

warden_t::warden_t(const ports_t& _ports) : ports(_ports) {}

std::unique_ptr<kit::raw_mqtt_t> warden_t::come(const kit::raw_will_t& _will,
                                                const QByteArray& _id) {
    using kit::raw_mqtt_t;
    const QDeadlineTimer limit(10'000);
    while (!limit.hasExpired()) {
        auto made =
            std::make_unique<raw_mqtt_t>(raw_mqtt_t::way_t::tcp, QString::number(ports.tcp));
        const int code = made->connect({.name = warden().toLatin1(),
                                        .password = kit::password_of(warden()).toLatin1(),
                                        .id = _id,
                                        .expiry = _will.topic.isEmpty() ? 0u : 100u,
                                        .will = _will});
        if (code != raw_mqtt_t::closed) {
            return code == 0 ? std::move(made) : nullptr;
        }
    }
    return nullptr;
}

bool warden_t::sign_in() {
    client = come({}, "warden");
    if (!client || client->subscribe(own(warden(), "#"), 2) >= 128 || !settle(*client, warden())) {
        return false;
    }
    refresh();
    return values.size() > 1;
}

void warden_t::refresh() {
    const QJsonObject answer = ask(*client, {{request_topic(warden(), "get")}}).constFirst();
    const QJsonObject data = answer.value(QLatin1String("data")).toObject();
    for (const element_t& element : elements()) {
        const QJsonObject found = data.value(QLatin1String(element.id)).toObject();
        if (!found.isEmpty()) {
            values.insert(element.id, value_in(found, element.function));
        }
    }
    absorb();
}

void warden_t::absorb() {
    for (const kit::raw_message_t& message : client->so_far()) {
        const qsizetype slash = message.topic.lastIndexOf('/');
        const QByteArray id = message.topic.mid(slash + 1);
        if (!message.topic.endsWith("objects_list/" + id)) {
            continue;
        }
        if (id == fence_lamp || id == will_lamp) {
            shown[id].insert(fence_value(message));
        }
        for (const element_t& element : elements()) {
            if (element.id == id) {
                const QJsonObject packet = object_of(message.payload);
                shown[id].insert(
                    value_in(packet.value(QLatin1String("data")).toObject(), element.function));
            }
        }
    }
    client->forget();
}

mark_t warden_t::new_mark() {
    ++last_number;
    mark_t mark;
    for (const element_t& element : elements()) {
        mark.insert(element.id, element.is_switch
                                    ? QString::number(is_on(values.value(element.id)) ? 0 : 1)
                                    : QString::number(last_number));
    }
    return mark;
}

QJsonObject warden_t::list_write(const mark_t& _mark) {
    QJsonObject data;
    for (const element_t& element : elements()) {
        if (_mark.contains(element.id)) {
            data.insert(QLatin1String(element.id),
                        functions_of(element.function, _mark.value(element.id)));
        }
    }
    return {{QStringLiteral("data"), data}};
}

void warden_t::write_quickly(const mark_t& _mark) {
    ask(*client, {{request_topic(warden(), "set"), list_write(_mark)}});
}

bool warden_t::write(const mark_t& _mark) {
    write_quickly(_mark);
    QSet<QByteArray> missing;
    for (const element_t& element : elements()) {
        if (element.takes_writes) {
            missing.insert(element.id);
        }
    }
    const bool shown_all = client->wait_for_message([&](const kit::raw_message_t& message) {
        for (const element_t& element : elements()) {
            if (missing.contains(element.id) && is_state(message, warden(), element.id) &&
                is_equal(
                    element,
                    value_in(object_of(message.payload).value(QLatin1String("data")).toObject(),
                             element.function),
                    _mark.value(element.id))) {
                missing.remove(element.id);
            }
        }
        return missing.isEmpty();
    });
    refresh();
    return shown_all;
}

void warden_t::read_each() {
    QList<request_t> requests;
    for (const element_t& element : elements()) {
        requests.append({request_topic(warden(), "get", element.id)});
    }
    ask(*client, requests);
    absorb();
}

bool warden_t::wait_for_fence(const char* _lamp, const QString& _value) {
    return shown[_lamp].contains(_value) ||
           client->wait_for_message([&](const kit::raw_message_t& message) {
               return is_state(message, warden(), _lamp) && fence_value(message) == _value;
           });
}

bool warden_t::fence() {
    const QString value = QString::number(++last_number);
    ask(*client, {{request_topic(warden(), "set", fence_lamp),
                   {{QStringLiteral("data"), functions_of("execute", value)}}}});
    return wait_for_fence(fence_lamp, value);
}

QSet<QByteArray> warden_t::reached_by(const mark_t& _mark) {
    const QMap<QByteArray, QString> before = values;
    fence();
    refresh();
    QSet<QByteArray> reached;
    for (const element_t& element : elements()) {
        const QString mark = _mark.value(element.id);
        const bool has_changed = !is_equal(element, before.value(element.id), mark);
        const bool is_there = is_equal(element, values.value(element.id), mark);
        if (_mark.contains(element.id) && element.takes_writes &&
            ((has_changed && is_there) ||
             (!element.is_switch && shown[element.id].contains(mark)))) {
            reached.insert(element.id);
        }
    }
    return reached;
}

bool warden_t::has_heard(const QByteArray& _text) {
    bool heard = false;
    client->is_alive();
    for (const kit::raw_message_t& message : client->so_far()) {
        heard = heard || message.payload.contains(_text);
    }
    absorb();
    return heard;
}

void warden_t::leave_will(int _seconds) {
    will_value = QString::number(++last_number);
    const auto leaving =
        come({.topic = request_topic(warden(), "set", will_lamp),
              .payload = text_of({{QStringLiteral("data"), functions_of("execute", will_value)}}),
              .delay = quint32(_seconds)},
             "warden-will");
    if (leaving) {
        leaving->vanish();
    }
}

bool warden_t::wait_for_will() {
    return wait_for_fence(will_lamp, will_value);
}

}  // namespace matrix
