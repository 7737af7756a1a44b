#include <algorithm>

#include "system/rights_matrix/attempts.h"

namespace matrix {

namespace {

/// Whether a state that shows the mark has come.
outcome_t shown(const kit::raw_mqtt_t& _device, const QString& _user, const element_t& _element,
                const mark_t& _mark) {
    const auto shows = [&](const kit::raw_message_t& message) {
        const QJsonObject state =
            object_of(message.payload).value(QLatin1String("data")).toObject();
        return is_state(message, _user, _element.id) &&
               (_element.is_switch ||
                value_in(state, _element.function) == _mark.value(_element.id));
    };
    return std::any_of(_device.so_far().begin(), _device.so_far().end(), shows) ? outcome_t::allowed
                                                                                : outcome_t::silent;
}

void note_retained(visitor_t& _visitor) {
    const QString& user = _visitor.plan.user;
    const auto device = _visitor.device(_visitor.new_id("late"));
    if (!device) {
        _visitor.miss("retained states");
        return;
    }
    device->subscribe(own(user, "status/#"), 2);
    device->is_alive();
    for (const element_t& element : elements()) {
        const bool is_there =
            std::any_of(device->so_far().begin(), device->so_far().end(),
                        [&](const kit::raw_message_t& message) {
                            return message.retain && is_state(message, user, element.id);
                        });
        _visitor.note(path_t::retained_state, element,
                      is_there ? outcome_t::allowed : outcome_t::silent);
    }
}

}  // namespace

void try_states(visitor_t& _visitor) {
    const QString& user = _visitor.plan.user;
    note_retained(_visitor);
    const kit::raw_connect_t kept{.clean = false, .expiry = 100};
    const QByteArray away_id = _visitor.new_id("away");
    auto away = _visitor.device(away_id, kept);
    const auto group = _visitor.device(_visitor.new_id("group"));
    if (!away || !group) {
        _visitor.miss("states");
        return;
    }
    away->subscribe(own(user, "status/#"), 2);
    away->disconnect();
    group->subscribe("$share/mine/" + own(user, "status/#"), 2);
    settle(*_visitor.client, user);
    _visitor.client->forget();
    const mark_t mark = _visitor.warden.new_mark();
    _visitor.warden.write(mark);
    settle(*_visitor.client, user);
    group->is_alive();
    away = _visitor.device(away_id, kept);
    if (!away) {
        _visitor.miss("resumed session");
        return;
    }
    away->is_alive();
    for (const element_t& element : elements()) {
        if (element.takes_writes) {
            _visitor.note(path_t::pushed_state, element,
                          shown(*_visitor.client, user, element, mark));
            _visitor.note(path_t::own_group, element, shown(*group, user, element, mark));
            _visitor.note(path_t::resumed_session, element, shown(*away, user, element, mark));
        }
    }
    away->disconnect();
    _visitor.client->forget();
}

}  // namespace matrix
