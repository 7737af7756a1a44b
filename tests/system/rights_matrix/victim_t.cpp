#include "system/rights_matrix/victim_t.h"

#include <QDeadlineTimer>
#include <algorithm>

#include "kit/password_of.h"
#include "system/rights_matrix/attempts.h"
#include "system/rights_matrix/expected.h"
#include "system/rights_matrix/matrix_home.h"

namespace matrix {

namespace {

const kit::raw_connect_t kept{.clean = false, .expiry = 1'000};

bool may_read(right_t _right) {
    return expected(_right, path_t::read_one, false, 5) == outcome_t::allowed;
}

bool may_write(right_t _right) {
    return expected(_right, path_t::write_one, false, 5) == outcome_t::allowed;
}

bool has_state(const kit::raw_mqtt_t& _client, const QString& _user, const QByteArray& _id,
               bool _retained) {
    return std::any_of(_client.so_far().begin(), _client.so_far().end(),
                       [&](const kit::raw_message_t& message) {
                           return is_state(message, _user, _id) && (!_retained || message.retain);
                       });
}

bool has_any_state(const kit::raw_mqtt_t& _client, const QString& _user, bool _retained) {
    return std::any_of(elements().begin(), elements().end(), [&](const element_t& element) {
        return has_state(_client, _user, element.id, _retained);
    });
}

}  // namespace

victim_t::victim_t(change_t _change, bool _storm, const ports_t& _ports,
                   const QList<door_t>& _doors, warden_t* _warden, tally_t* _tally)
    : change(_change),
      user(victim_of(_change, _storm)),
      right(right_after(_change)),
      ports(_ports),
      doors(_doors),
      warden(*_warden),
      tally(*_tally) {}

visit_plan_t victim_t::plan(const door_t& _door, const QString& _moment) const {
    return {user, kit::password_of(user), right, _door, _moment};
}

bool victim_t::prepare() {
    for (const door_t& door : doors) {
        old_t old;
        old.visitor = std::make_unique<visitor_t>(plan(door, {}), ports, &warden, &tally);
        old.session = old.visitor->new_id("session");
        old.connection = old.visitor->device(old.visitor->new_id("old"));
        const auto session = old.visitor->device(old.session, kept);
        if (!old.connection || !session) {
            return false;
        }
        old.connection->subscribe(own(user, "#"), 2);
        session->subscribe(own(user, "#"), 2);
        session->disconnect();
        olds.push_back(std::move(old));
    }
    // This waits in the sessions.
    warden.write(warden.new_mark());
    return std::all_of(olds.begin(), olds.end(),
                       [this](const old_t& old) { return settle(*old.connection, user); });
}

void victim_t::leave_wills(int _seconds) {
    int wills = 0;
    for (old_t& old : olds) {
        if (old.visitor->plan.door.version != 5) {
            continue;
        }
        // Every other element: of two writes at once the first one may never show.
        old.will = warden.new_mark();
        for (qsizetype index = 0; index < elements().size(); ++index) {
            if (index % 2 != wills % 2) {
                old.will.remove(elements()[index].id);
            }
        }
        ++wills;
        const auto leaving =
            old.visitor->device(old.visitor->new_id("leaving"),
                                {.expiry = 1'000,
                                 .will = {.topic = request_topic(user, "set"),
                                          .payload = text_of(warden_t::list_write(old.will)),
                                          .delay = quint32(_seconds)}});
        if (leaving) {
            leaving->vanish();
        }
    }
}

bool victim_t::is_effective(kit::raw_mqtt_t& _client) const {
    const element_t& element = elements().constFirst();
    const QList<QJsonObject> answers =
        ask(_client, {{request_topic(user, "get")},
                      {request_topic(user, "set", element.id),
                       {{QStringLiteral("data"), functions_of(element.function, "1")}}}});
    if (answers.constLast().isEmpty()) {
        return !signs_in(right) || change == change_t::recreated;
    }
    const QJsonObject list = answers[0].value(QLatin1String("data")).toObject();
    const bool reads =
        std::any_of(elements().begin(), elements().end(),
                    [&](const element_t& each) { return list.contains(QLatin1String(each.id)); });
    const bool writes =
        answers[1].value(QLatin1String("data")).toObject().contains(QLatin1String("functions"));
    return reads == may_read(right) && writes == may_write(right);
}

bool victim_t::wait_until_granted() {
    kit::raw_mqtt_t& client = *olds.front().connection;
    const QDeadlineTimer limit(20'000);
    while (!limit.hasExpired()) {
        client.forget();
        const QJsonObject list = ask(client, {{request_topic(user, "get")}}).constFirst();
        if (list.value(QLatin1String("data"))
                .toObject()
                .contains(QLatin1String(elements().constFirst().id))) {
            return true;
        }
    }
    return false;
}

victim_t::times_t victim_t::watch(const QElapsedTimer& _clock, int _limit_ms) {
    times_t times;
    kit::raw_mqtt_t& client = *olds.front().connection;
    while (times.effective < 0 && _clock.elapsed() < _limit_ms) {
        client.forget();
        // Something has to go on that could be delivered.
        warden.write_quickly(warden.new_mark());
        const bool is_over = is_effective(client);
        const qint64 now = _clock.elapsed();
        times.effective = is_over ? now : -1;
        const bool has_come = !may_read(right) && has_any_state(client, user, false);
        times.last_delivered = !is_over || has_come ? now : times.last_delivered;
    }
    client.forget();
    times.retained_gone = wait_for_no_retained(_clock, _limit_ms);
    return times;
}

qint64 victim_t::wait_for_no_retained(const QElapsedTimer& _clock, int _limit_ms) {
    if (!signs_in(right) || may_read(right)) {
        return _clock.elapsed();
    }
    do {
        const auto device = olds.front().visitor->device(olds.front().visitor->new_id("late"));
        if (device) {
            device->subscribe(own(user, "status/#"), 2);
            device->is_alive();
            if (!has_any_state(*device, user, true)) {
                return _clock.elapsed();
            }
        }
    } while (_clock.elapsed() < _limit_ms);
    return -1;
}

void victim_t::note(right_t _right, const door_t& _door, const QString& _moment, path_t _path,
                    const element_t& _element, outcome_t _seen) {
    tally.note({_right, QString::fromLatin1(_element.id), _path, _door, _moment, false}, _seen);
}

void victim_t::judge_connections(const QString& _moment) {
    // Who has the name now is not whose connection it was.
    const right_t former = change == change_t::recreated ? right_t::removed : right;
    std::vector<bool> open;
    for (const old_t& old : olds) {
        open.push_back(old.connection->is_alive());
        old.connection->forget();
    }
    warden.write(warden.new_mark());
    for (std::size_t index = 0; index < olds.size(); ++index) {
        old_t& old = olds[index];
        const bool is_there = open[index] && settle(*old.connection, user);
        for (const element_t& element : elements()) {
            if (element.takes_writes) {
                note(former, old.visitor->plan.door, _moment, path_t::old_connection, element,
                     has_state(*old.connection, user, element.id, false) ? outcome_t::allowed
                     : is_there                                          ? outcome_t::silent
                                                                         : outcome_t::refused);
            }
        }
        old.connection->forget();
    }
}

void victim_t::judge_sessions(const QString& _moment) {
    // A name that was given again is kept out while somebody's former rights are remembered: that
    // the session is refused right after the change says as little as one that is empty.
    const outcome_t without =
        change == change_t::recreated ? outcome_t::silent : outcome_t::refused;
    for (const old_t& old : olds) {
        const auto session = old.visitor->device(old.session, kept);
        if (session) {
            session->is_alive();
        }
        for (const element_t& element : elements()) {
            if (!element.is_hidden) {
                note(right, old.visitor->plan.door, _moment, path_t::old_session, element,
                     !session                                       ? without
                     : has_state(*session, user, element.id, false) ? outcome_t::allowed
                                                                    : outcome_t::silent);
            }
        }
    }
}

void victim_t::judge_wills(const QString& _moment) {
    for (const old_t& old : olds) {
        if (old.will.isEmpty()) {
            continue;
        }
        const QSet<QByteArray> reached = warden.reached_by(old.will);
        for (const element_t& element : elements()) {
            // A switch may have been set to the same by others meanwhile.
            if (old.will.contains(element.id) && element.takes_writes && !element.is_switch) {
                note(right, old.visitor->plan.door, _moment, path_t::old_will, element,
                     reached.contains(element.id) ? outcome_t::allowed : outcome_t::silent);
            }
        }
    }
}

void victim_t::visit_all(const QString& _moment, bool _waits_for_wills) {
    for (const door_t& door : doors) {
        visit_plan_t next = plan(door, _moment);
        next.waits_for_wills = _waits_for_wills;
        visit(next, ports, &warden, &tally);
    }
}

void victim_t::keep_alive() {
    for (const old_t& old : olds) {
        old.connection->is_alive();
        old.connection->forget();
    }
}

}  // namespace matrix
